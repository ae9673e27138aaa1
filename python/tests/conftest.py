# SPDX-License-Identifier: GPL-3.0-or-later
"""What the tests share: small indexes in a folder that each test has for itself."""

from __future__ import annotations

from pathlib import Path
from typing import Iterator

import pytest

import kestan

FLOWERS = [
    ("a.txt", "Roses are red", "Roses"),
    ("b.txt", "Violets like roses", "Violets"),
]


@pytest.fixture
def path(tmp_path: Path) -> Path:
    """A path where there is no index yet."""
    return tmp_path / "notes.index"


@pytest.fixture
def flowers(path: Path) -> Path:
    """An index of two documents."""
    with kestan.open(path, "w") as index:
        index.add_many(FLOWERS)
    return path


@pytest.fixture
def writer(flowers: Path) -> Iterator[kestan.Writer]:
    """A writer of the index of two documents."""
    with kestan.open(flowers, "w") as opened:
        yield opened
        opened.close()


@pytest.fixture
def reader(flowers: Path) -> Iterator[kestan.Reader]:
    """A reader of the index of two documents."""
    with kestan.open(flowers) as opened:
        yield opened
