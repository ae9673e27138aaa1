# SPDX-License-Identifier: GPL-3.0-or-later
"""Threads that share what they may share, and the interpreter's lock, which C does without."""

from __future__ import annotations

import sys
import threading
import time
from pathlib import Path
from typing import Callable, Iterator

import pytest

import kestan
from helpers import calls, names


@pytest.fixture(autouse=True)
def switch_often() -> Iterator[None]:
    """Lets threads take turns a hundred times as often as usual."""
    before = sys.getswitchinterval()
    sys.setswitchinterval(5e-5)
    yield
    sys.setswitchinterval(before)


def in_threads(count: int, function: Callable[[int], None]) -> None:
    """Runs `function` in threads, and raises the first exception of any."""
    errors: list[BaseException] = []

    def run(number: int) -> None:
        try:
            function(number)
        except BaseException as error:
            errors.append(error)

    threads = [threading.Thread(target=run, args=(i,)) for i in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if errors:
        raise errors[0]


def test_threads_share_a_reader(reader: kestan.Reader) -> None:
    def search(number: int) -> None:
        for _ in range(300):
            assert names(reader.search("red")) == ["a.txt"]
            assert reader.count("roses", filter=lambda it: it.name == "b.txt") == 1
            assert "b.txt" in reader
            assert [term.term for term in reader.terms("v")] == ["violets"]

    in_threads(4, search)


def test_threads_share_hits_and_iterators(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add_many((f"{i:04}", "rose") for i in range(1000))
    with kestan.open(path) as reader:
        hits, documents = reader.search("rose", limit=None), reader.documents()
        seen: list[str] = []

        def read(number: int) -> None:
            for document in documents:
                seen.append(document.name)
            for i in range(number, 1000, 4):
                assert hits[i].name == f"{i:04}"
                assert hits[i].snippet() == "rose"
                assert hits.notes == ()

        in_threads(4, read)
    assert sorted(seen) == [f"{i:04}" for i in range(1000)]


def test_closing_while_others_search_is_safe(flowers: Path) -> None:
    for _ in range(50):
        index = kestan.open(flowers)
        closed = 0

        def search(number: int) -> None:
            nonlocal closed
            try:
                for _ in range(10**6):
                    assert index.search("red")[0].name == "a.txt"
                    len(index)
            except ValueError as error:
                assert str(error) == "the reader is closed"
                closed += 1

        def close(number: int) -> None:
            if number:
                search(number)
            else:
                time.sleep(0.002)
                index.close()

        in_threads(4, close)
        assert closed == 3


def test_refreshing_while_others_search_is_safe(reader: kestan.Reader, flowers: Path) -> None:
    def work(number: int) -> None:
        if number == 0:
            with kestan.open(flowers, "w", sync=False) as writer:
                for i in range(20):
                    writer.add(f"c{i}", "Tulips")
                    writer.commit()
                    reader.refresh()
        else:
            for _ in range(300):
                assert names(reader.search("red")) == ["a.txt"]

    in_threads(3, work)
    assert reader.count("tulips") == 20


def test_a_writer_in_two_threads_at_once_says_so(path: Path) -> None:
    inside, go_on = threading.Event(), threading.Event()

    def wait(progress: kestan.Progress) -> None:
        inside.set()
        assert go_on.wait(60)

    index = kestan.open(path, "w", progress=wait)
    index.add("a", "rose")
    thread = threading.Thread(target=index.commit)
    thread.start()
    assert inside.wait(60)
    for call in calls(lambda: index.add("b", "rose"), index.commit, index.rollback, index.warnings):
        with pytest.raises(ValueError, match="another call with this writer is running"):
            call()
    index.close()  # lets the commit end
    go_on.set()
    thread.join()
    with kestan.open(path) as reader:
        assert list(reader) == ["a"]
    kestan.open(path, "w").close()


def test_other_threads_run_during_a_commit(path: Path) -> None:
    """Without the interpreter's lock, a commit lets a thread count on; with it, it would stand."""
    counted = 0
    is_done = False

    def count() -> None:
        nonlocal counted
        while not is_done:
            counted += 1
            time.sleep(0.0005)

    # A progress function would hand the lock over too, so the time between two calls is watched.
    with kestan.open(path, "w", threads=1) as index:
        index.add_many((str(i), f"{i} " + " ".join(f"w{i * 7 + k}" for k in range(200)))
                       for i in range(3000))
        thread = threading.Thread(target=count)
        thread.start()
        begin, before = time.monotonic(), counted
        index.commit()
        seconds, during = time.monotonic() - begin, counted - before
        is_done = True
        thread.join()
    assert seconds > 0.02, "the commit is too short to tell"
    assert during > seconds * 1000 / 20
