# SPDX-License-Identifier: GPL-3.0-or-later
"""What several tests need."""

from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path
from typing import Callable

import kestan

PYTHON_FOLDER = Path(__file__).resolve().parent.parent
PAGE = PYTHON_FOLDER.parent / "docs" / "python.md"


def names(hits: kestan.Hits) -> list[str]:
    """Returns the names of hits, in order."""
    return [hit.name for hit in hits]


def calls(*functions: Callable[[], object]) -> tuple[Callable[[], object], ...]:
    """Returns the functions, as those without arguments that they are."""
    return functions


def found(path: os.PathLike[str], query: str) -> list[str]:
    """Returns what a reader opened now finds."""
    with kestan.open(path) as index:
        return names(index.search(query, limit=0))


def run_python(program: str, folder: Path, *options: str) -> subprocess.CompletedProcess[str]:
    """Runs a program in a process of its own, in `folder`, where all warnings are shown."""
    return subprocess.run([sys.executable, "-W", "always", *options, "-c", program], cwd=folder,
                          capture_output=True, text=True, timeout=60, check=False)


def ran(program: str, folder: Path, *options: str) -> str:
    """The same; returns what it printed. It must end well and say nothing on standard error."""
    done = run_python(program, folder, *options)
    assert (done.returncode, done.stderr) == (0, ""), f"{done.returncode}: {done.stderr}"
    return done.stdout
