# SPDX-License-Identifier: GPL-3.0-or-later
"""kestan.open()"""

from __future__ import annotations

import gzip
import os
from pathlib import Path
from typing import Any

import pytest

import kestan


def test_a_writer_makes_an_index_where_there_is_none(path: Path) -> None:
    kestan.open(path, "w").close()
    with kestan.open(path) as index:
        assert len(index) == 0


def test_a_writer_does_not_empty_an_index(flowers: Path) -> None:
    with kestan.open(flowers, "w") as index:
        index.add("c.txt", "Tulips")
    with kestan.open(flowers) as reader:
        assert list(reader) == ["a.txt", "b.txt", "c.txt"]


def test_without_create_a_writer_makes_nothing(path: Path) -> None:
    with pytest.raises(FileNotFoundError) as caught:
        kestan.open(path, "w", create=False)
    assert caught.value.filename == str(path)
    assert not path.exists()


def test_a_reader_of_no_index_is_a_missing_file(path: Path) -> None:
    with pytest.raises(FileNotFoundError, match="there is no index") as caught:
        kestan.open(path)
    assert caught.value.filename == str(path)


def test_of_several_indexes_the_missing_one_is_named(flowers: Path, tmp_path: Path) -> None:
    with pytest.raises(FileNotFoundError) as caught:
        kestan.open([flowers, tmp_path / "none"])
    assert caught.value.filename == str(tmp_path / "none")


@pytest.mark.parametrize("kind", [str, os.fsencode, Path])
def test_a_path_is_text_or_bytes_or_a_path(flowers: Path, kind: Any) -> None:
    with kestan.open(kind(flowers)) as index:
        assert len(index) == 2


def test_a_path_may_hold_bytes_that_are_not_utf_8(tmp_path: Path) -> None:
    path = os.fsencode(tmp_path) + b"/\xff.index"
    with kestan.open(path, "w") as writer:
        writer.add("a", "rose")
    with kestan.open(os.fsdecode(path)) as reader:
        assert "a" in reader


def test_several_indexes_are_searched_as_one(flowers: Path, tmp_path: Path) -> None:
    with kestan.open(tmp_path / "more", "w") as writer:
        writer.add("c.txt", "Roses again")
    with kestan.open([flowers, tmp_path / "more"]) as index:
        assert len(index) == 3
        assert {(hit.name, hit.index) for hit in index.search("roses")} == {
            ("a.txt", 0), ("b.txt", 0), ("c.txt", 1)}


def test_a_second_writer_is_told_that_the_index_is_busy(
        writer: kestan.Writer, flowers: Path) -> None:
    with pytest.raises(kestan.BusyError) as caught:
        kestan.open(flowers, "w")
    assert caught.value.filename is not None
    assert str(flowers) in caught.value.filename


def test_a_closed_writer_lets_the_next_one_in_at_once(flowers: Path) -> None:
    first = kestan.open(flowers, "w")
    with pytest.raises(ValueError) as caught:
        first.add("", "no name")
    first.close()
    kestan.open(flowers, "w").close()  # while `caught` still has the frames of first
    assert caught.value is not None


def test_the_language_of_words_can_be_said(path: Path) -> None:
    with kestan.open(path, "w", language="german") as writer:
        writer.add("a", "zwei Häuser")
    with kestan.open(path) as reader:
        assert reader.count("Haus") == 1


def test_a_language_that_is_not_known_is_a_value_error(path: Path) -> None:
    with pytest.raises(ValueError, match="klingon"):
        kestan.open(path, "w", language="klingon")


def test_without_positions_words_are_found_anywhere(path: Path) -> None:
    with kestan.open(path, "w", positions=False) as writer:
        writer.add("a", "one two three four")
    with kestan.open(path) as reader:
        assert not reader.statistics().positions
        assert reader.count("one NEAR/1 four") == 1


def test_all_options_together_are_fine(path: Path) -> None:
    with kestan.open(path, "w", sync=False, threads=2, memory_budget=1 << 20, merge_factor=3,
                     create=True, progress=lambda progress: None) as writer:
        writer.add("a", "rose")
    with kestan.open(path) as reader:
        assert len(reader) == 1


def test_an_unknown_mode_is_a_value_error(flowers: Path) -> None:
    with pytest.raises(ValueError, match="""mode must be "r" or "w", not 'a'"""):
        kestan.open(flowers, "a")  # type: ignore[call-overload]


def test_an_unknown_option_is_a_type_error(flowers: Path) -> None:
    with pytest.raises(TypeError, match="no option 'colour'"):
        kestan.open(flowers, "w", colour=1)  # type: ignore[call-overload]


def test_a_reader_takes_no_options_of_writers(flowers: Path) -> None:
    with pytest.raises(TypeError, match="""'sync' is an option of mode "w\""""):
        kestan.open(flowers, sync=False)  # type: ignore[call-overload]


@pytest.mark.parametrize("wrong", [None, 5, 1.5, object(), {"a"}])
def test_a_path_of_the_wrong_type_is_named(wrong: Any) -> None:
    for mode in ("r", "w"):
        with pytest.raises(TypeError, match="path must be str, bytes or os.PathLike, not"):
            kestan.open(wrong, mode)  # type: ignore[call-overload]


def test_a_writer_has_one_path(flowers: Path) -> None:
    with pytest.raises(TypeError, match="path must be str"):
        kestan.open([flowers], "w")  # type: ignore[call-overload]


def test_no_paths_are_a_value_error() -> None:
    with pytest.raises(ValueError, match="at least one path"):
        kestan.open([])


def test_a_zero_byte_in_a_path_is_a_value_error() -> None:
    for mode in ("r", "w"):
        with pytest.raises(ValueError, match="zero byte"):
            kestan.open("a\0b", mode)  # type: ignore[call-overload]


@pytest.mark.parametrize("option, wrong, error", [
    ("language", 5, TypeError), ("threads", "2", TypeError), ("threads", -1, ValueError),
    ("threads", 1 << 32, ValueError), ("memory_budget", -1, ValueError),
    ("memory_budget", 1 << 64, ValueError), ("memory_budget", 1.5, TypeError),
    ("merge_factor", 1, ValueError), ("progress", 5, TypeError),
])
def test_a_wrong_option_is_named(path: Path, option: str, wrong: Any, error: Any) -> None:
    with pytest.raises(error, match=option):
        kestan.open(path, "w", **{option: wrong})
    assert not path.exists()


def test_a_file_that_is_no_index_is_refused(tmp_path: Path) -> None:
    file = tmp_path / "text.gz"
    file.write_bytes(gzip.compress(b"roses"))
    with pytest.raises((kestan.Error, ValueError, OSError)) as caught:
        kestan.open(file)
    assert str(file) in str(caught.value)
    assert gzip.decompress(file.read_bytes()) == b"roses"


@pytest.mark.skipif(os.geteuid() == 0, reason="root may write anywhere")
def test_a_folder_without_permission_is_a_permission_error_for_users(tmp_path: Path) -> None:
    tmp_path.chmod(0o500)
    with pytest.raises(PermissionError):
        kestan.open(tmp_path / "index", "w")


def test_what_the_system_refuses_is_an_os_error_with_errno(tmp_path: Path) -> None:
    (tmp_path / "file").write_text("")
    with pytest.raises(NotADirectoryError) as caught:
        kestan.open(tmp_path / "file" / "index", "w")
    assert caught.value.errno == 20
    assert str(tmp_path) in str(caught.value.filename)


def test_readers_and_writers_are_not_made_by_hand() -> None:
    with pytest.raises(TypeError, match="kestan.open"):
        kestan.Reader("notes.index")
    with pytest.raises(TypeError, match="kestan.open"):
        kestan.Writer("notes.index")


def test_a_handle_shows_its_path_and_whether_it_is_closed(flowers: Path) -> None:
    for mode, kind in (("r", "Reader"), ("w", "Writer")):
        index: Any = kestan.open(flowers, mode)  # type: ignore[call-overload]
        assert repr(index) == f"<kestan.{kind} {str(flowers)!r}>"
        assert not index.closed
        index.close()
        assert repr(index) == f"<kestan.{kind} {str(flowers)!r} (closed)>"
        assert index.closed
