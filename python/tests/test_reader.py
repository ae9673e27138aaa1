# SPDX-License-Identifier: GPL-3.0-or-later
"""kestan.Reader, but for searching"""

from __future__ import annotations

import gc
import os
import shutil
from datetime import datetime, timedelta, timezone
from pathlib import Path
from typing import Any

import pytest

import kestan
from helpers import calls


def test_a_reader_is_much_like_a_mapping(reader: kestan.Reader) -> None:
    assert len(reader) == 2
    assert "a.txt" in reader
    assert "z.txt" not in reader
    assert list(reader) == ["a.txt", "b.txt"]
    assert reader["a.txt"].title == "Roses"


def test_a_document_has_all_that_was_added_with_it(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add("a", "one two three", title="T", summary="S", data=b"\xff\0")
    with kestan.open(path) as reader:
        document = reader["a"]
    assert document[:5] == ("a", "T", "S", b"\xff\0", 3)
    assert abs(datetime.now(timezone.utc) - document.added) < timedelta(minutes=5)


def test_a_missing_document_is_a_key_error_that_names_it(reader: kestan.Reader) -> None:
    with pytest.raises(KeyError, match="there is no document 'z.txt'"):
        reader["z.txt"]
    with pytest.raises(kestan.NotFoundError):
        reader[b"z.txt"]


def test_names_that_no_document_can_have_are_not_there(reader: kestan.Reader) -> None:
    for name in ("", "a\0b", "n" * 5000):
        assert name not in reader


@pytest.mark.parametrize("wrong", [5, None, 1.5, ("a.txt",), Path("a.txt")])
def test_a_name_of_the_wrong_type_is_a_type_error(reader: kestan.Reader, wrong: Any) -> None:
    with pytest.raises(TypeError, match="^name must be str or bytes, not "):
        wrong in reader
    with pytest.raises(TypeError, match="^name must be str or bytes, not "):
        reader[wrong]


def test_documents_come_one_after_the_other(reader: kestan.Reader) -> None:
    documents = reader.documents()
    assert iter(documents) is documents
    assert [document.name for document in documents] == ["a.txt", "b.txt"]
    assert list(documents) == []  # it stays at its end


def test_an_empty_index_has_no_documents(path: Path) -> None:
    kestan.open(path, "w").close()
    with kestan.open(path) as reader:
        assert (list(reader), len(reader), list(reader.terms())) == ([], 0, [])
        assert reader.search("rose").total == 0


def test_a_reader_is_read_like_a_mapping(reader: kestan.Reader) -> None:
    found = reader.get("a.txt")
    assert found is not None and found.title == reader["a.txt"].title
    assert reader.get("z.txt") is None
    assert list(reader.keys()) == list(reader)
    assert {name: document.title for name, document in dict(reader).items()} == {
        document.name: document.title for document in reader.documents()}


def test_terms_begin_with_the_prefix(reader: kestan.Reader) -> None:
    assert list(reader.terms("r")) == [("red", 1), ("roses", 2)]
    assert list(reader.terms("r", 1)) == [("red", 1)]
    assert [term.term for term in reader.terms()] == ["are", "like", "red", "roses", "violets"]
    assert list(reader.terms("zz")) == []


def test_suggestions_are_words_of_the_index(reader: kestan.Reader) -> None:
    assert reader.suggest("rsoes") == ["roses"]
    assert reader.suggest("roses") == []  # it is there
    assert reader.suggest("viollets", limit=1) == ["violets"]


def test_a_limit_of_none_is_no_limit(reader: kestan.Reader) -> None:
    assert reader.suggest("rsoes", None) == reader.suggest("rsoes", 0)
    assert len(list(reader.terms("", None))) == 5
    assert len(reader.search("roses", limit=None)) == 2
    assert len(reader.search("roses", limit=0)) == 2


@pytest.mark.parametrize("limit, error", [(-1, ValueError), ("5", TypeError), (1.5, TypeError),
                                          (1 << 64, ValueError)])
def test_a_wrong_limit_is_named(reader: kestan.Reader, limit: Any, error: Any) -> None:
    for call in calls(lambda: reader.search("a", limit=limit), lambda: reader.suggest("a", limit),
                 lambda: reader.terms("a", limit)):
        with pytest.raises(error, match="^limit must be"):
            call()


def test_statistics_count(reader: kestan.Reader, flowers: Path) -> None:
    statistics = reader.statistics()
    assert statistics[:4] == (2, 0, 6, 1)
    assert statistics.bytes == sum(file.stat().st_size for file in flowers.iterdir()
                                   if file.name != "LOCK")
    assert statistics.positions is True


def test_a_reader_sees_a_commit_after_a_refresh(
        reader: kestan.Reader, writer: kestan.Writer) -> None:
    assert reader.refresh() is False
    writer.add("c.txt", "Tulips")
    assert reader.refresh() is False
    writer.commit()
    assert "c.txt" not in reader
    assert reader.refresh() is True
    assert "c.txt" in reader


def test_an_index_that_is_gone_is_a_missing_file(reader: kestan.Reader, flowers: Path) -> None:
    shutil.rmtree(flowers)
    with pytest.raises(FileNotFoundError, match="there is no index") as caught:
        reader.refresh()
    assert caught.value.filename == str(flowers)
    assert len(reader) == 2


def test_a_closed_reader_says_so(flowers: Path) -> None:
    index = kestan.open(flowers)
    word = index.word("rose")
    index.close()
    index.close()
    for call in calls(lambda: index.search("a"), lambda: index.count("a"), lambda: index.word("a"),
                 lambda: index.prefix("a"), lambda: index.phrase("a"), lambda: index.suggest("a"),
                 lambda: index.terms("a"), index.documents, index.refresh, index.statistics,
                 lambda: len(index), lambda: "a" in index, lambda: index["a"],
                 lambda: iter(index), index.__enter__, lambda: word & word, lambda: ~word,
                 lambda: word.near(word), lambda: index.search(word)):
        with pytest.raises(ValueError, match="the reader is closed"):
            call()


def test_iterators_outlive_their_reader(flowers: Path) -> None:
    index = kestan.open(flowers)
    documents, terms, hits = index.documents(), index.terms("r"), index.search("red")
    next(documents)
    index.close()
    assert next(documents).name == "b.txt"
    assert [term.term for term in terms] == ["red", "roses"]
    assert hits[0].name == "a.txt"
    assert hits[0].snippet() == "Roses are red"
    assert hits.total == 1


def test_what_a_reader_made_keeps_files_open_until_it_is_gone(flowers: Path) -> None:
    before = len(os.listdir("/proc/self/fd"))
    index = kestan.open(flowers)
    documents = index.documents()
    next(documents)
    index.close()
    del documents
    gc.collect()
    assert len(os.listdir("/proc/self/fd")) == before


def test_an_iterator_outlives_a_refresh(flowers: Path, writer: kestan.Writer) -> None:
    with kestan.open(flowers) as index:
        documents = index.documents()
        writer.remove("b.txt")
        writer.compact()
        index.refresh()
        assert [document.name for document in documents] == ["a.txt", "b.txt"]
        assert list(index) == ["a.txt"]


def test_a_damaged_index_is_a_damaged_error_that_names_the_file(flowers: Path) -> None:
    segment = next(flowers.glob("*.segment"))
    segment.write_bytes(b"")
    with pytest.raises(kestan.DamagedError) as caught:
        with kestan.open(flowers) as index:
            index.search("roses")
    assert caught.value.filename is not None
    assert str(flowers) in str(caught.value)


def test_a_check_of_a_whole_index_finds_no_fault(flowers: Path) -> None:
    report = kestan.check(flowers)
    assert (report.faults, [f for f in report.findings if f.is_fault]) == (0, [])


def test_a_check_of_a_damaged_index_names_the_file(flowers: Path) -> None:
    segment = next(flowers.glob("*.segment"))
    content = bytearray(segment.read_bytes())
    content[len(content) // 2] ^= 0xFF
    segment.write_bytes(content)
    report = kestan.check(flowers)
    assert report.faults >= 1
    faults = [finding for finding in report.findings if finding.is_fault]
    assert len(faults) == report.faults
    assert any(finding.file == str(segment) for finding in faults)
    assert all(isinstance(finding.key, bytes) and finding.text for finding in faults)


def test_a_check_tells_of_a_lost_manifest(flowers: Path) -> None:
    (flowers / "MANIFEST").unlink()
    with pytest.raises(kestan.DamagedError):
        kestan.open(flowers)
    report = kestan.check(flowers)
    assert [finding.file for finding in report.findings] == [str(flowers / "MANIFEST")]


def test_a_check_of_no_index_is_a_missing_file(path: Path) -> None:
    with pytest.raises(FileNotFoundError) as caught:
        kestan.check(path)
    assert caught.value.filename == str(path)


def test_a_check_needs_a_path() -> None:
    with pytest.raises(TypeError, match="^path must be"):
        kestan.check(5)  # type: ignore[arg-type]
