# SPDX-License-Identifier: GPL-3.0-or-later
"""Queries that are built by calls."""

from __future__ import annotations

from typing import TYPE_CHECKING, Callable, NoReturn

from ._errors import check
from ._handles import Unpicklable
from ._native import CData, ffi, lib
from ._values import text_bytes, whole

if TYPE_CHECKING:
    from ._reader import Reader

_MOST_DISTANCE = 2**32 - 1


class Query(Unpicklable):
    """What a program asks for: built by calls, so that nothing has to be quoted.

    It is made by the word(), prefix() and phrase() of a reader, is put to that reader only, and
    never changes. `a & b` finds what both find, `a | b` what any finds, `~a` all documents but what
    `a` finds, `a - b` what `a` finds and `b` does not.

    >>> near = index.word("roses").near(index.word("red"), 3) & ~index.word("blue")
    >>> near
    <kestan.Query word('roses').near(word('red'), 3) & ~word('blue')>
    >>> [hit.name for hit in index.search(near)]
    ['a.txt']
    """

    __slots__ = ("_reader", "_pointer", "_kind", "_parts", "_text")

    _reader: Reader
    _pointer: CData
    _kind: str
    _parts: tuple[Query, ...]
    _text: str

    def __init__(self, *_: object) -> None:
        """Refuses: readers make queries."""
        raise TypeError("queries are made by the methods of a reader: index.word('roses')")

    @classmethod
    def _made(
        cls, reader: Reader, out: CData, kind: str, parts: tuple[Query, ...], text: str
    ) -> Query:
        """Takes the kestan_query at `out`."""
        query = cls.__new__(cls)
        query._reader = reader
        query._pointer = ffi.gc(out[0], lib.kestan_query_free)
        query._kind = kind
        query._parts = parts
        query._text = text
        return query

    def near(self, other: Query, distance: int = 1) -> Query:
        """Returns the query for both at most `distance` words apart, in either order.

        If this is such a query too, `other` is near the last of its parts.

        >>> index.count(index.word("roses").near(index.word("red"), 1))
        0
        >>> index.count(index.word("roses").near(index.word("red"), 2))
        1
        """
        if not isinstance(other, Query):
            raise TypeError(f"other must be a Query, not {type(other).__name__}")
        self._check_same(other)
        distance = whole(distance, "distance", 1, _MOST_DISTANCE)
        out = ffi.new("kestan_query**")
        with self._reader._handle as reader:
            check(
                lib.kestan_query_near(out, reader, self._pointer, other._pointer, distance), reader
            )
        text = f"{self._inner('near')}.near({other._text}, {distance})"
        return Query._made(self._reader, out, "near", (self, other), text)

    def __and__(self, other: Query) -> Query:
        """Returns the query for what both find."""
        if not isinstance(other, Query):
            return NotImplemented
        return self._joined(other, "&", lib.kestan_query_and)

    def __or__(self, other: Query) -> Query:
        """Returns the query for what any of both finds."""
        if not isinstance(other, Query):
            return NotImplemented
        return self._joined(other, "|", lib.kestan_query_or)

    def __sub__(self, other: Query) -> Query:
        """Returns the query for what this one finds and `other` does not."""
        if not isinstance(other, Query):
            return NotImplemented
        return self & ~other

    def __invert__(self) -> Query:
        """Returns the query for all documents that this one does not find."""
        out = ffi.new("kestan_query**")
        with self._reader._handle as reader:
            check(lib.kestan_query_not(out, reader, self._pointer), reader)
        return Query._made(self._reader, out, "~", (self,), "~" + self._inner("~"))

    def __bool__(self) -> NoReturn:
        """Refuses, for `and`, `or` and `not` would silently drop a part of the query."""
        raise TypeError("a query is neither true nor false: join queries by &, | and ~, "
                        "not by 'and', 'or' and 'not'")

    def __repr__(self) -> str:
        """Shows the calls that made it."""
        return f"<kestan.Query {self._text}>"

    def _joined(self, other: Query, kind: str, join: Callable[..., int]) -> Query:
        """Joins both. Operands of a join of the same kind become its own: a & b & c has three."""
        self._check_same(other)
        parts = self._parts if self._kind == kind else (self,)
        parts += other._parts if other._kind == kind else (other,)
        pointers = [part._pointer for part in parts]
        out = ffi.new("kestan_query**")
        with self._reader._handle as reader:
            check(join(out, reader, pointers, len(pointers)), reader)
        text = f" {kind} ".join(part._inner(kind) for part in parts)
        return Query._made(self._reader, out, kind, parts, text)

    def _inner(self, kind: str) -> str:
        """Returns the text as it stands inside a query of `kind`, in brackets if it needs them."""
        is_whole = self._kind in ("word", "near") or (self._kind == "~" and kind != "near")
        return self._text if is_whole else f"({self._text})"

    def _check_same(self, other: Query) -> None:
        if other._reader is not self._reader:
            raise ValueError("the queries were made by different readers")


def plain_query(
    reader: Reader, make: Callable[..., int], call: str, argument: str, text: str | bytes
) -> Query:
    """Returns the query that `make` makes of a text."""
    encoded = text_bytes(text, argument)
    out = ffi.new("kestan_query**")
    with reader._handle as pointer:
        check(make(out, pointer, encoded, len(encoded)), pointer)
    return Query._made(reader, out, "word", (), f"{call}({text!r})")
