# SPDX-License-Identifier: GPL-3.0-or-later
"""Memory and descriptors over many calls: as many at the end as at the beginning"""

from __future__ import annotations

import gc
import os
from contextlib import suppress
from pathlib import Path
from typing import Any, Callable

import pytest

import kestan

SEARCHES = int(os.environ.get("KESTAN_LEAK_SEARCHES", "100000"))


def resident_kilobytes() -> int:
    """Returns how much memory of the process is in use."""
    with open("/proc/self/smaps_rollup", encoding="ascii") as lines:
        return sum(int(line.split()[1]) for line in lines if line.startswith("Private_"))


def descriptors() -> int:
    """Returns how many files are open."""
    return len(os.listdir("/proc/self/fd"))


def growth(call: Callable[[], Any], times: int) -> int:
    """Calls many times. Returns by how many bytes memory grew."""
    gc.collect()
    before, files = resident_kilobytes(), descriptors()
    for _ in range(times):
        call()
    gc.collect()
    assert descriptors() == files
    return (resident_kilobytes() - before) * 1024


def assert_no_leak(call: Callable[[], Any], times: int, bytes_each: float) -> None:
    """Memory may grow by less than `bytes_each` of the calls on average.

    What is leaked grows each time; what allocators keep for later, only once or twice.
    """
    growth(call, times // 10)
    assert any(growth(call, times) <= times * bytes_each for _ in range(3))


def test_searches_leak_nothing(reader: kestan.Reader) -> None:
    assert_no_leak(lambda: [hit.name for hit in reader.search("red roses")], SEARCHES, 8)


def test_snippets_notes_and_filters_leak_nothing(reader: kestan.Reader) -> None:
    def call() -> None:
        hits = reader.search("roses violet", filter=lambda it: it.title)
        assert hits[0].snippet(before="<", after=">"), hits.notes

    assert_no_leak(call, SEARCHES // 10, 16)


def test_iterators_left_half_way_leak_nothing(reader: kestan.Reader) -> None:
    def call() -> None:
        next(reader.documents())
        next(reader.terms())
        reader.suggest("rsoes")
        assert reader["a.txt"]

    assert_no_leak(call, SEARCHES // 10, 16)


def test_queries_leak_nothing(reader: kestan.Reader) -> None:
    def call() -> None:
        reader.search(reader.word("roses").near(reader.word("red"), 3) & ~reader.prefix("bl"))

    assert_no_leak(call, SEARCHES // 10, 16)


def test_errors_leak_nothing(reader: kestan.Reader, path: Path) -> None:
    def fails(call: Callable[[], Any]) -> None:
        with suppress(Exception):
            call()
            pytest.fail("there was no error")

    def call() -> None:
        fails(lambda: reader["z.txt"])
        fails(lambda: reader.word("-"))
        fails(lambda: reader.search("red", k1=-1.0))
        fails(lambda: reader.search("red", filter=lambda it: 1 / 0))
        fails(lambda: kestan.open("/nowhere/index"))

    assert_no_leak(call, SEARCHES // 20, 32)


def test_opening_and_closing_leaks_nothing(flowers: Path) -> None:
    def call() -> None:
        with kestan.open(flowers) as index:
            index.search("red")
        with kestan.open(flowers, "w", progress=lambda progress: None) as writer:
            writer.add("c.txt", "Tulips")
            writer.rollback()

    assert_no_leak(call, SEARCHES // 100, 128)


def test_adding_leaks_nothing(path: Path) -> None:
    with kestan.open(path, "w", sync=False, memory_budget=1 << 20) as writer:
        def call() -> None:
            for i in range(200):
                writer.add(f"{i}", "Roses are red", title="Roses", data=b"data")
            writer.rollback()

        assert_no_leak(call, SEARCHES // 500, 2048)
