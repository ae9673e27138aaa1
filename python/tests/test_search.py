# SPDX-License-Identifier: GPL-3.0-or-later
"""Reader.search() and what it returns"""

from __future__ import annotations

import copy
import pickle
from collections.abc import Sequence
from pathlib import Path
from typing import Any, Union

import pytest

import kestan
from helpers import calls, names


@pytest.fixture
def many(path: Path) -> Path:
    """An index of 30 documents that all have the word rose, with different scores."""
    with kestan.open(path, "w") as index:
        index.add_many((f"{i:02}.txt", "rose " * (30 - i) + "tulip " * i, f"Title {i}")
                       for i in range(30))
    return path


def test_the_best_hit_comes_first(reader: kestan.Reader) -> None:
    hits = reader.search("roses OR red")
    assert names(hits) == ["a.txt", "b.txt"]
    assert hits[0].percent == 100
    assert 1 <= hits[1].percent < 100
    assert hits[0].score > hits[1].score > 0
    assert (hits[0].title, hits[0].index) == ("Roses", 0)


def test_hits_are_a_sequence(many: Path) -> None:
    with kestan.open(many) as index:
        hits = index.search("rose", limit=10)
    assert isinstance(hits, Sequence)
    assert (len(hits), hits.total) == (10, 30)
    all_names = names(hits)
    assert [hits[i].name for i in range(10)] == all_names
    assert [hits[i].name for i in range(-10, 0)] == all_names
    assert [hit.name for hit in hits[2:8:3]] == all_names[2:8:3]
    assert [hit.name for hit in hits[::-1]] == all_names[::-1]
    assert [hit.name for hit in reversed(hits)] == all_names[::-1]
    assert hits[5:5] == []
    assert bool(hits)


def test_past_the_last_hit_is_an_index_error(reader: kestan.Reader) -> None:
    hits = reader.search("red")
    for position in (1, -2, 1 << 70):
        with pytest.raises(IndexError, match=f"there is no hit {position}: there are 1"):
            hits[position]


def test_a_hit_is_not_numbered_by_anything_else(reader: kestan.Reader) -> None:
    hits: Any = reader.search("red")
    for wrong in ("0", 0.0, None):
        with pytest.raises(TypeError, match="numbered by int or slice"):
            hits[wrong]


def test_hits_are_equal_only_to_themselves(reader: kestan.Reader) -> None:
    hits = reader.search("red")
    assert hits == hits
    assert hits != reader.search("red")


def test_a_hit_is_equal_to_itself_however_it_was_reached(reader: kestan.Reader) -> None:
    hits, others = reader.search("roses"), reader.search("roses")
    assert hits[0] == hits[-2] == next(iter(hits))
    assert hits[0] != hits[1]
    assert hits[0] != others[0]
    assert hits[0] != "a.txt"
    assert hits.index(hits[1]) == 1
    assert hits[1] in hits
    assert len({hits[0], hits[1], hits[0]}) == 2


def test_what_belongs_to_a_process_is_not_copied_or_pickled(
        reader: kestan.Reader, writer: kestan.Writer) -> None:
    hits = reader.search("red")
    for thing in (reader, writer, hits, hits[0], reader.word("red")):
        for use in (pickle.dumps, copy.copy, copy.deepcopy):
            with pytest.raises(TypeError, match="open the index in each process"):
                use(thing)  # type: ignore[operator]


def test_documents_and_errors_are_pickled(reader: kestan.Reader) -> None:
    document = reader["a.txt"]
    assert pickle.loads(pickle.dumps(document)) == document
    with pytest.raises(kestan.QueryError) as caught:
        reader.search('red "roses', strict=True)
    error = pickle.loads(pickle.dumps(caught.value))
    assert (str(error), error.column) == (str(caught.value), 4)


def test_the_limit_is_how_many_hits_there_are_at_most(many: Path) -> None:
    with kestan.open(many) as index:
        for limit, count in ((1, 1), (29, 29), (30, 30), (31, 30), (None, 30)):
            assert len(index.search("rose", limit=limit)) == count
        assert len(index.search("rose")) == 10


def test_words_side_by_side_mean_what_is_said(reader: kestan.Reader) -> None:
    assert names(reader.search("red violet")) == ["a.txt", "b.txt"]  # no document has both
    assert len(reader.search("red violet", words="all")) == 0
    assert len(reader.search("red violets", words="any")) == 2


def test_notes_tell_how_a_query_was_read(reader: kestan.Reader) -> None:
    hits = reader.search("red violet")
    assert hits.notes
    assert all(isinstance(note, str) for note in hits.notes)
    assert reader.search("red").notes == ()


def test_suggestions_come_for_words_that_no_document_has(reader: kestan.Reader) -> None:
    hits = reader.search("rsoes")
    assert hits.suggestions
    assert "roses" in hits.suggestions[0]
    assert reader.search("red").suggestions == ()


def test_a_strict_search_refuses_what_it_would_leave_out(reader: kestan.Reader) -> None:
    assert names(reader.search('"red roses" NEAR')) is not None
    with pytest.raises(kestan.QueryError) as caught:
        reader.search('red NEAR', strict=True)
    assert caught.value.column is not None


def test_the_column_of_an_error_counts_characters(reader: kestan.Reader) -> None:
    columns = []
    queries: list[Union[str, bytes]] = ["rose NEAR", "röse NEAR", "röse NEAR".encode()]
    for query in queries:
        with pytest.raises(kestan.QueryError) as caught:
            reader.search(query, strict=True)
        columns.append(caught.value.column)
    first, umlaut, encoded = columns
    assert first is not None
    assert umlaut == first
    assert encoded == first + 1


def test_without_titles_hits_have_none(reader: kestan.Reader) -> None:
    assert reader.search("red", titles=False)[0].title == ""


def test_the_numbers_of_the_ranking_change_scores(many: Path) -> None:
    with kestan.open(many) as index:
        plain = index.search("rose")[0].score
        assert index.search("rose", k1=0.5)[0].score != plain
        assert index.search("rose", k1=2.0, b=0.75, proximity_bonus=0.4,
                            opening_bonus=0.7)[0].score == plain


@pytest.mark.parametrize("number", ["k1", "b", "proximity_bonus", "opening_bonus"])
def test_a_wrong_number_is_named(reader: kestan.Reader, number: str) -> None:
    with pytest.raises(TypeError, match=f"^{number} must be a number, not str"):
        reader.search("red", **{number: "1"})  # type: ignore[arg-type]
    with pytest.raises(ValueError, match=number.split("_")[-1]):
        reader.search("red", **{number: float("nan")})  # type: ignore[arg-type]


@pytest.mark.parametrize("wrong", [5, None, ["red"], bytearray(b"red"), Path("red")])
def test_a_query_of_the_wrong_type_is_a_type_error(reader: kestan.Reader, wrong: Any) -> None:
    asks: list[Any] = [reader.search, reader.count]
    for call in asks:
        with pytest.raises(TypeError, match="^query must be str, bytes or a Query, not "):
            call(wrong)


def test_words_must_be_one_of_three(reader: kestan.Reader) -> None:
    with pytest.raises(ValueError, match="""^words must be "best", "all" or "any", not 'none'"""):
        reader.search("red", words="none")
    with pytest.raises(TypeError, match="^words must be str, not int"):
        reader.search("red", words=1)  # type: ignore[arg-type]


def test_a_query_may_be_bytes_or_have_zero_bytes_or_halves_of_characters(
        reader: kestan.Reader) -> None:
    assert names(reader.search(b"red")) == ["a.txt"]
    assert names(reader.search("red\0")) == ["a.txt"]
    assert names(reader.search("red \ud83d")) == ["a.txt"]


def test_counting_takes_the_options_of_searching(reader: kestan.Reader) -> None:
    assert reader.count("roses") == 2
    assert reader.count("red violet", words="all") == 0
    assert reader.count("roses", filter=lambda document: document.name == "a.txt") == 1
    with pytest.raises(kestan.QueryError):
        reader.count("red NEAR", strict=True)


def test_a_filter_is_shown_all_of_a_document(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add("a", "rose", title="T", summary="S", data=b"\xff")
    seen = []

    def note(it: kestan.Candidate) -> bool:
        seen.append((it.name, it.title, it.summary, it.data, it.index, it.added))
        return True

    with kestan.open(path) as reader:
        assert reader.search("rose", filter=note).total == 1
        assert set(seen) == {("a", "T", "S", b"\xff", 0, reader["a"].added)}


def test_a_filter_alone_finds_all_that_passes(reader: kestan.Reader) -> None:
    assert names(reader.search("", filter=lambda it: it.name > "a.txt")) == ["b.txt"]


def test_what_a_filter_was_shown_is_gone_afterwards(reader: kestan.Reader) -> None:
    kept: list[kestan.Candidate] = []
    reader.search("red", filter=kept.append)
    for call in calls(lambda: kept[0].name, lambda: kept[0].data, lambda: kept[0].added,
                 lambda: kept[0].index):
        with pytest.raises(ValueError, match="the filter has returned"):
            call()


def test_an_exception_in_a_filter_comes_out_of_the_search(reader: kestan.Reader) -> None:
    asks: list[Any] = [reader.search, reader.count]
    for call in asks:
        with pytest.raises(ZeroDivisionError):
            call("roses", filter=lambda it: 1 / 0)
    assert len(reader.search("roses")) == 2


def test_a_filter_may_use_other_readers_and_not_its_own(
        reader: kestan.Reader, flowers: Path) -> None:
    with kestan.open(flowers) as other:
        hits = reader.search("roses", filter=lambda it: it.name in names(other.search("red")))
    assert names(hits) == ["a.txt"]
    for use in calls(reader.refresh, lambda: reader.search("red"), lambda: len(reader)):
        with pytest.raises(ValueError, match="a filter cannot use the reader"):
            reader.search("roses", filter=lambda it: use())


def test_a_filter_may_close_its_reader(flowers: Path) -> None:
    index = kestan.open(flowers)
    assert index.search("roses", filter=lambda it: index.close()).total == 0
    assert index.closed


def test_a_filter_must_be_callable(reader: kestan.Reader) -> None:
    with pytest.raises(TypeError, match="^filter must be callable, not str"):
        reader.search("red", filter="name")  # type: ignore[arg-type]


def test_a_snippet_is_cut_from_the_text_or_from_the_summary(path: Path) -> None:
    text = "word " * 100 + "the rose is here " + "word " * 100
    with kestan.open(path, "w") as index:
        index.add("a", text)
        index.add("b", text, summary="")
    with kestan.open(path) as reader:
        for hit in reader.search("rose"):
            own = hit.snippet()
            assert hit.snippet(text) == hit.snippet(text.encode())
            assert "the rose is here" in hit.snippet(text)
            assert own == ("" if hit.name == "b" else hit.snippet(text))
            assert len(own) < 250


def test_a_snippet_marks_what_was_asked_for(reader: kestan.Reader) -> None:
    hit = reader.search("rose red")[0]
    assert hit.snippet(before="<b>", after="</b>") == "<b>Roses</b> are <b>red</b>"
    assert hit.snippet(before="*") == "*Roses are *red"
    assert hit.snippet() == "Roses are red"


def test_a_text_without_a_match_has_no_snippet(reader: kestan.Reader) -> None:
    assert reader.search("red")[0].snippet("nothing of the kind") == ""


@pytest.mark.parametrize("arguments", [{"text": 5}, {"before": 5}, {"after": None}])
def test_arguments_of_a_snippet_of_the_wrong_type_are_named(
        reader: kestan.Reader, arguments: dict[str, Any]) -> None:
    with pytest.raises(TypeError, match=next(iter(arguments))):
        reader.search("red")[0].snippet(**arguments)


def test_a_hit_and_hits_show_what_they_are(reader: kestan.Reader) -> None:
    hits = reader.search("red")
    assert repr(hits[0]) == "<kestan.Hit 100% 'a.txt' 'Roses'>"
    assert repr(hits) == "<kestan.Hits 1 of 1: [100% 'a.txt']>"


def test_hits_show_three_names_at_most(many: Path) -> None:
    with kestan.open(many) as index:
        assert repr(index.search("rose", limit=4)).endswith(", ...]>")


def test_notebooks_get_a_table_in_which_texts_are_no_html(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add(b"<i>\xff", "a <b>rose</b> & more", title="<script>")
    with kestan.open(path) as reader:
        table = reader.search("rose")._repr_html_()
    assert "<script>" not in table
    assert "&lt;script&gt;" in table
    assert "&lt;i&gt;\ufffd" in table
    assert "<mark>rose</mark>" in table
    assert "&lt;b&gt;" in table
    with kestan.open(path) as reader:
        assert "<p>no document has &#x27;tulip&#x27;" in reader.search("rose OR tulip")._repr_html_()
    table.encode()


def test_hits_of_a_document_that_is_gone_still_make_a_table(flowers: Path) -> None:
    with kestan.open(flowers) as reader:
        hits = reader.search("red")
        with kestan.open(flowers, "w") as writer:
            writer.remove("a.txt")
            writer.compact()
        reader.refresh()
        assert "a.txt" in hits._repr_html_()
        assert hits[0].snippet("still red") == "still red"
