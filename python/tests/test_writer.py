# SPDX-License-Identifier: GPL-3.0-or-later
"""kestan.Writer"""

from __future__ import annotations

import gc
import json
from pathlib import Path
from typing import Any, Iterator

import pytest

import kestan
from helpers import calls, found


def test_what_was_added_is_found_after_the_block(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add("a.txt", "Roses are red")
        assert found(path, "red") == []  # nothing is committed yet
    assert found(path, "red") == ["a.txt"]


def test_an_exception_in_the_block_rolls_back(flowers: Path) -> None:
    with pytest.raises(ZeroDivisionError):
        with kestan.open(flowers, "w") as index:
            index.add("c.txt", "Tulips")
            index.remove("a.txt")
            1 / 0
    assert found(flowers, "tulips") == []
    assert found(flowers, "red") == ["a.txt"]


def test_what_was_committed_before_an_exception_stays(flowers: Path) -> None:
    with pytest.raises(ZeroDivisionError):
        with kestan.open(flowers, "w") as index:
            index.add("c.txt", "Tulips")
            index.commit()
            index.remove("a.txt")
            1 / 0
    assert sorted(found(flowers, "tulips OR red")) == ["a.txt", "c.txt"]


def test_a_writer_closed_inside_its_block_commits_nothing(flowers: Path) -> None:
    with kestan.open(flowers, "w") as index:
        index.add("c.txt", "Tulips")
        index.close()
    assert found(flowers, "tulips") == []


def test_a_document_replaces_one_of_its_name(flowers: Path, writer: kestan.Writer) -> None:
    writer.add("a.txt", "Tulips")
    writer.commit()
    assert found(flowers, "tulips") == ["a.txt"]
    assert found(flowers, "red") == []


def test_removed_documents_are_gone(flowers: Path, writer: kestan.Writer) -> None:
    writer.remove("a.txt")
    writer.commit()
    assert found(flowers, "roses") == ["b.txt"]


def test_removing_what_is_not_there_is_a_key_error_of_ours(writer: kestan.Writer) -> None:
    with pytest.raises(kestan.NotFoundError) as caught:
        writer.remove("z.txt")
    assert isinstance(caught.value, KeyError)
    assert "z.txt" in str(caught.value)
    assert not str(caught.value).startswith("'")


def test_renamed_documents_are_found_by_their_new_name(
        flowers: Path, writer: kestan.Writer) -> None:
    writer.rename("a.txt", "z.txt")
    writer.commit()
    assert found(flowers, "red") == ["z.txt"]


def test_renaming_needs_one_name_and_not_the_other(writer: kestan.Writer) -> None:
    with pytest.raises(kestan.NotFoundError):
        writer.rename("z.txt", "y.txt")
    with pytest.raises(kestan.ExistsError):
        writer.rename("a.txt", "b.txt")


def test_a_rollback_forgets_what_was_not_committed(flowers: Path, writer: kestan.Writer) -> None:
    writer.add("c.txt", "Tulips")
    writer.rollback()
    writer.commit()
    assert found(flowers, "tulips") == []


def test_compacting_leaves_one_segment(flowers: Path, writer: kestan.Writer) -> None:
    writer.add("c.txt", "Tulips")
    writer.remove("a.txt")
    writer.compact()
    with kestan.open(flowers) as reader:
        statistics = reader.statistics()
    assert (statistics.segments, statistics.documents, statistics.removed_documents) == (1, 2, 0)


def test_many_documents_are_tuples_or_mappings(path: Path) -> None:
    with kestan.open(path, "w") as index:
        assert index.add_many([
            ("a", "one"),
            ("b", "two", "Title of b"),
            {"name": "c", "text": "three", "title": "Title of c", "data": b"x"},
            ["d", "a row of a table"],
        ]) == 4
    with kestan.open(path) as reader:
        assert [(d.name, d.title, d.data) for d in reader.documents()] == [
            ("a", "", b""), ("b", "Title of b", b""), ("c", "Title of c", b"x"),
            ("d", "", b"")]


def test_many_documents_may_come_from_a_generator_and_be_none(path: Path) -> None:
    with kestan.open(path, "w") as index:
        assert index.add_many(iter(())) == 0
        assert index.add_many((str(i), f"word{i}") for i in range(100)) == 100
    with kestan.open(path) as reader:
        assert len(reader) == 100


@pytest.mark.parametrize("wrong", ["ab", b"ab", ("a",), ("a", "b", "c", "d"), 5, None, ["a"]])
def test_a_document_of_another_shape_is_told_by_its_number(
        writer: kestan.Writer, wrong: Any) -> None:
    with pytest.raises(TypeError, match=r"document 1 must be \(name, text\)"):
        writer.add_many([("a", "b"), wrong])


def test_an_unknown_key_of_a_mapping_is_a_type_error(writer: kestan.Writer) -> None:
    with pytest.raises(TypeError, match="colour"):
        writer.add_many([{"name": "a", "text": "b", "colour": "red"}])


def test_an_exception_of_the_generator_comes_out(flowers: Path) -> None:
    def failing() -> Iterator[tuple[str, str]]:
        yield "c.txt", "Tulips"
        raise OSError("cannot read")

    with pytest.raises(OSError, match="cannot read"):
        with kestan.open(flowers, "w") as index:
            index.add_many(failing())
    assert found(flowers, "tulips") == []


@pytest.mark.parametrize("arguments, argument", [
    ({"name": 5}, "name"), ({"name": None}, "name"), ({"text": 5}, "text"),
    ({"text": None}, "text"), ({"title": 5}, "title"), ({"title": None}, "title"),
    ({"title": 0}, "title"), ({"summary": 5}, "summary"), ({"data": "text"}, "data"),
    ({"data": None}, "data"), ({"data": 0}, "data"), ({"name": bytearray(b"a")}, "name"),
])
def test_an_argument_of_the_wrong_type_is_named(
        flowers: Path, writer: kestan.Writer, arguments: dict[str, Any], argument: str) -> None:
    good: dict[str, Any] = {"name": "c", "text": "Tulips"}
    with pytest.raises(TypeError, match=f"^{argument} must be .*, not "):
        writer.add(**(good | arguments))
    writer.commit()
    assert found(flowers, "tulips") == []


@pytest.mark.parametrize("name", ["", "a\0b", "n" * 4097, b""])
def test_a_name_that_no_document_can_have_is_a_value_error(
        writer: kestan.Writer, name: str) -> None:
    with pytest.raises(ValueError, match="name"):
        writer.add(name, "text")


def test_a_refused_document_loses_nothing(flowers: Path) -> None:
    with kestan.open(flowers, "w") as index:
        index.add("c.txt", "Tulips")
        with pytest.raises(ValueError):
            index.add("", "text")
        index.add("d.txt", "Tulips too")
    assert found(flowers, "tulips") == ["c.txt", "d.txt"]


def test_names_may_be_any_bytes_as_names_of_files_are(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add(b"caf\xe9.txt", "rose")
        index.add("straße.txt", "rose")
    with kestan.open(path) as reader:
        assert sorted(reader) == ["caf\udce9.txt", "straße.txt"]
        assert b"caf\xe9.txt" in reader
        assert "caf\udce9.txt" in reader
        assert "straße.txt".encode() in reader


def test_a_name_with_half_a_character_is_a_value_error(writer: kestan.Writer) -> None:
    with pytest.raises(ValueError):
        writer.add("\ud83d", "text")


def test_a_text_with_half_a_character_is_indexed_without_it(path: Path) -> None:
    text: str = json.loads('"rose \\ud83d tulip"')
    with kestan.open(path, "w") as index:
        index.add("a", text, title=text)
    assert found(path, "rose tulip") == ["a"]


def test_texts_may_be_bytes(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add(b"a", "Häuser".encode(), title="Höhe".encode(), summary=b"s",
                  data=bytearray(b"d"))
    with kestan.open(path) as reader:
        assert reader["a"][:4] == ("a", "Höhe", "s", b"d")
        assert reader.count("Häuser") == 1


def test_zero_bytes_in_texts_are_kept(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add("a", "rose\0tulip", summary="one\0two", data=b"\0\1")
    with kestan.open(path) as reader:
        assert reader.count("tulip") == 1
        assert reader["a"].data == b"\0\1"


def test_the_summary_is_the_text_unless_it_is_said(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add("a", "Roses are red")
        index.add("b", "Roses are red", summary="")
        index.add("c", "Roses are red", summary="a rose")
    with kestan.open(path) as reader:
        assert [reader[name].summary for name in "abc"] == ["Roses are red", "", "a rose"]


def test_a_closed_writer_says_so(flowers: Path) -> None:
    index = kestan.open(flowers, "w")
    index.close()
    index.close()
    for call in calls(lambda: index.add("a", "b"), lambda: index.add_many([("a", "b")]),
                 lambda: index.add_many([]),
                 lambda: index.remove("a.txt"), lambda: index.rename("a.txt", "c"), index.commit,
                 index.rollback, index.compact, index.warnings, index.__enter__):
        with pytest.raises(ValueError, match="the writer is closed"):
            call()


def test_a_forgotten_writer_is_a_resource_warning_and_commits_nothing(flowers: Path) -> None:
    index = kestan.open(flowers, "w")
    index.add("c.txt", "Tulips")
    with pytest.warns(ResourceWarning, match="unclosed <kestan.Writer"):
        del index
        gc.collect()
    assert found(flowers, "tulips") == []
    kestan.open(flowers, "w").close()  # it is not busy


def test_progress_is_told_and_grows(path: Path) -> None:
    seen: list[kestan.Progress] = []
    with kestan.open(path, "w", progress=seen.append) as index:
        index.add_many((str(i), f"word{i} " * 50) for i in range(2000))
    assert seen
    assert {progress.phase for progress in seen} <= {"writing", "merging"}
    assert all(0 <= progress.done <= progress.total for progress in seen)


def test_a_progress_function_that_returns_false_stops_the_commit(flowers: Path) -> None:
    answers = [False]
    index = kestan.open(flowers, "w", progress=lambda progress: answers[0])
    index.add("c.txt", "Tulips")
    with pytest.raises(kestan.StoppedError):
        index.commit()
    assert found(flowers, "tulips") == []
    answers[0] = True
    index.add("d.txt", "Tulips")
    index.commit()
    index.close()
    assert found(flowers, "tulips") == ["d.txt"]  # the other one was rolled back


def test_an_exception_in_progress_comes_out_of_the_commit(flowers: Path) -> None:
    def failing(progress: kestan.Progress) -> None:
        raise LookupError("from progress")

    index = kestan.open(flowers, "w", progress=failing)
    index.add("c.txt", "Tulips")
    for function in (index.commit, index.compact):
        with pytest.raises(LookupError, match="from progress"):
            function()
        index.add("c.txt", "Tulips")
    index.close()
    assert found(flowers, "tulips") == []


def test_a_stopped_merge_keeps_what_was_committed(flowers: Path) -> None:
    index = kestan.open(flowers, "w", merge_factor=2,
                        progress=lambda progress: progress.phase == "writing")
    index.add("c.txt", "Tulips")
    with pytest.raises(kestan.StoppedError):
        index.commit()
    assert found(flowers, "tulips") == ["c.txt"]
    index.add("d.txt", "Tulips")
    index.close()


def test_a_progress_function_cannot_use_the_writer(flowers: Path) -> None:
    refused: list[str] = []

    def using(progress: kestan.Progress) -> None:
        try:
            index.add("d.txt", "Daisies")
        except ValueError as error:
            refused.append(str(error))

    index = kestan.open(flowers, "w", progress=using)
    index.add("c.txt", "Tulips")
    index.commit()
    index.close()
    assert set(refused) == {"another call with this writer is running"}
    assert found(flowers, "tulips OR daisies") == ["c.txt"]


def test_a_progress_function_may_close_the_writer(flowers: Path) -> None:
    index = kestan.open(flowers, "w", progress=lambda progress: index.close())
    index.add("c.txt", "Tulips")
    index.commit()
    assert index.closed
    assert found(flowers, "tulips") == ["c.txt"]
    kestan.open(flowers, "w").close()
