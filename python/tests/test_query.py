# SPDX-License-Identifier: GPL-3.0-or-later
"""kestan.Query"""

from __future__ import annotations

from functools import reduce
from operator import and_, or_
from pathlib import Path
from typing import Any

import pytest

import kestan
from helpers import calls, names


@pytest.fixture
def letters(path: Path) -> Path:
    """An index of documents whose names are their words."""
    with kestan.open(path, "w", language="none") as index:
        index.add_many((name, name) for name in ("a b c", "a c", "b c", "c", "d"))
    return path


def test_words_prefixes_and_phrases_find_what_they_say(reader: kestan.Reader) -> None:
    assert reader.count(reader.word("rose")) == 2
    assert reader.count(reader.prefix("vio")) == 1
    assert reader.count(reader.phrase("roses are red")) == 1
    assert reader.count(reader.phrase("red roses")) == 0


def test_operators_join_queries(letters: Path) -> None:
    with kestan.open(letters) as index:
        a, b, c = (index.word(word) for word in "abc")
        for query, expected in [
            (a & b, {"a b c"}), (a | b, {"a b c", "a c", "b c"}), (c - a, {"b c", "c"}),
            (~c, {"d"}), (~(a | b) & c, {"c"}), (a & b & c, {"a b c"}), ((a | b) & ~b, {"a c"}),
        ]:
            assert set(names(index.search(query))) == expected, query
            assert index.count(query) == len(expected)


def test_near_is_in_either_order_and_counts_words(letters: Path) -> None:
    with kestan.open(letters) as index:
        a, c = index.word("a"), index.word("c")
        assert set(names(index.search(a.near(c, 1)))) == {"a c"}
        assert set(names(index.search(c.near(a, 2)))) == {"a b c", "a c"}


def test_words_of_a_query_are_no_operators(path: Path) -> None:
    with kestan.open(path, "w") as index:
        index.add("a", "this or that")
        index.add("b", "this and not that*")
    with kestan.open(path) as reader:
        assert names(reader.search(reader.phrase("this or that"))) == ["a"]


def test_a_query_shows_the_calls_that_made_it(reader: kestan.Reader) -> None:
    a, b, c = (reader.word(word) for word in ("a1", "b1", "c1"))
    for query, text in [
        (a & b & c, "word('a1') & word('b1') & word('c1')"),
        (a & (b | c), "word('a1') & (word('b1') | word('c1'))"),
        (a - b, "word('a1') & ~word('b1')"),
        (~(a | b), "~(word('a1') | word('b1'))"),
        ((a | b).near(c, 2), "(word('a1') | word('b1')).near(word('c1'), 2)"),
        (reader.prefix("a"), "prefix('a')"),
        (reader.phrase(b"a b"), "phrase(b'a b')"),
    ]:
        assert repr(query) == f"<kestan.Query {text}>"


def test_a_thousand_words_can_be_joined(letters: Path) -> None:
    with kestan.open(letters) as index:
        words = [index.word("c" if i == 500 else f"x{i}") for i in range(1000)]
        assert index.count(reduce(or_, words)) == 4
        assert index.count(reduce(and_, words)) == 0


def test_a_query_that_is_nested_too_deeply_is_a_query_error(letters: Path) -> None:
    with kestan.open(letters) as index:
        query = a = index.word("a")
        with pytest.raises(kestan.QueryError):
            for _ in range(100000):
                query = ~(query & a)


def test_a_query_without_words_is_a_query_error(reader: kestan.Reader) -> None:
    for make in (reader.word, reader.prefix, reader.phrase):
        for text in ("", " ", "-"):
            with pytest.raises(kestan.QueryError):
                make(text)


@pytest.mark.parametrize("wrong", [5, None, ["red"]])
def test_a_text_of_the_wrong_type_is_named(reader: kestan.Reader, wrong: Any) -> None:
    cases: list[tuple[Any, str]] = [
        (reader.word, "word"), (reader.prefix, "prefix"), (reader.phrase, "text"),
        (reader.suggest, "word"), (reader.terms, "prefix")]
    for make, argument in cases:
        with pytest.raises(TypeError, match=f"^{argument} must be str or bytes, not "):
            make(wrong)


def test_queries_are_joined_with_queries_only(reader: kestan.Reader) -> None:
    word: Any = reader.word("red")
    for join in calls(lambda: word & "roses", lambda: word | 5, lambda: word - None,
                 lambda: "roses" & word, lambda: word.near("roses", 3)):
        with pytest.raises(TypeError):
            join()


def test_and_or_and_not_would_drop_a_part_so_they_are_refused(reader: kestan.Reader) -> None:
    word = reader.word("red")
    for join in calls(lambda: word and word, lambda: word or word, lambda: not word):
        with pytest.raises(TypeError, match="join queries by &, | and ~"):
            join()


@pytest.mark.parametrize("distance, error", [(0, ValueError), (-1, ValueError),
                                             (1 << 32, ValueError), ("3", TypeError),
                                             (2.0, TypeError)])
def test_a_wrong_distance_is_named(reader: kestan.Reader, distance: Any, error: Any) -> None:
    with pytest.raises(error, match="^distance must be"):
        reader.word("roses").near(reader.word("red"), distance)


def test_a_query_is_put_to_its_own_reader_only(reader: kestan.Reader, flowers: Path) -> None:
    with kestan.open(flowers) as other:
        with pytest.raises(ValueError, match="by a different reader"):
            other.search(reader.word("red"))
        with pytest.raises(ValueError, match="by different readers"):
            other.word("red") & reader.word("red")
        with pytest.raises(ValueError, match="by different readers"):
            other.word("red").near(reader.word("red"))


def test_a_query_is_still_good_after_a_refresh(
        reader: kestan.Reader, writer: kestan.Writer) -> None:
    tulips = reader.word("tulips")
    writer.add("c.txt", "Tulips")
    writer.commit()
    assert reader.count(tulips) == 0
    reader.refresh()
    assert reader.count(tulips) == 1


def test_queries_are_not_made_by_hand() -> None:
    with pytest.raises(TypeError, match="made by the methods of a reader"):
        kestan.Query("roses")
