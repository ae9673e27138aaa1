# SPDX-License-Identifier: GPL-3.0-or-later
"""The answer to a search."""

from __future__ import annotations

from collections.abc import Sequence
from html import escape
from typing import Callable, Iterable, Iterator, Optional, Union, overload

from ._errors import NotFoundError, check
from ._handles import Turns, Unpicklable
from ._native import CData, ffi, lib
from ._values import Text, name_of, text_bytes, text_of

_HITS_AT_ONCE = 64  # that iterators fetch, for each time that they wait for other threads


class Hit(Unpicklable):
    """A document that matches. What it tells is fetched when it is looked at."""

    __slots__ = ("_hits", "_hit")

    def __init__(self, hits: Hits, hit: CData) -> None:
        self._hits = hits
        self._hit = hit

    @property
    def name(self) -> str:
        """The name of the document. Bytes that are not UTF-8 are as in names of files."""
        return name_of(self._hit.name, self._hit.name_length)

    @property
    def title(self) -> str:
        """The title of the document, or ""."""
        return text_of(self._hit.title, self._hit.title_length)

    @property
    def percent(self) -> int:
        """The score as a percentage of the best hit's, rounded; at least 1."""
        percent: int = self._hit.percent
        return percent

    @property
    def score(self) -> float:
        """How relevant it is; to be compared within one search."""
        score: float = self._hit.score
        return score

    @property
    def index(self) -> int:
        """Which of the opened indexes has it, from 0."""
        index: int = self._hit.index
        return index

    def snippet(self, text: Optional[Text] = None, *, before: str = "", after: str = "") -> str:
        """Returns the part of the text, about 160 bytes on one line, that shows why it matches.

        `text` is that of the document; without it, its summary is taken, which is the text itself
        unless summary= said something else. `before` and `after` are put around each word that was
        asked for. Returns "" if nothing matches there.

        Raises NotFoundError if there is no text and refresh() has taken the document away.

        >>> index.search("red")[0].snippet(before="[", after="]")
        'Roses are [red]'
        """
        if not isinstance(before, str) or not isinstance(after, str):
            raise TypeError("before and after must be str")
        return "".join(before + part + after if matches else part
                       for part, matches in self._fragments(text))

    def __eq__(self, other: object) -> bool:
        """Returns whether it is the same hit of the same search."""
        if not isinstance(other, Hit):
            return NotImplemented
        return self._hits is other._hits and bool(self._hit == other._hit)

    def __hash__(self) -> int:
        return hash(self._hit)

    def __repr__(self) -> str:
        """Shows its percentage, its name and its title."""
        title = f" {self.title!r}" if self.title else ""
        return f"<kestan.Hit {self.percent}% {self.name!r}{title}>"

    def _fragments(self, text: Optional[Text]) -> list[tuple[str, bool]]:
        """Returns the snippet in parts, and whether each was asked for."""
        encoded = ffi.NULL if text is None else text_bytes(text, "text")
        length = 0 if text is None else len(encoded)
        out, fragment = ffi.new("kestan_snippet**"), ffi.new("const kestan_fragment**")
        parts = []
        with self._hits._turns:
            hits = self._hits._pointer
            check(lib.kestan_hits_snippet(out, hits, self._hit, encoded, length), hits)
            snippet = ffi.gc(out[0], lib.kestan_snippet_free)
            while (code := lib.kestan_snippet_next(fragment, snippet)) == lib.KESTAN_OK:
                part = fragment[0]
                parts.append((text_of(part.text, part.text_length), bool(part.matches)))
            if code != lib.KESTAN_ITEROVER:
                check(code, snippet)
            ffi.release(snippet)
        return parts


class Hits(Unpicklable, Sequence[Hit]):
    """The hits of a search, the best first: a sequence whose items are made when looked at.

    It may outlive the reader, whose files stay open as long as there are hits of it.

    >>> hits = index.search("roses", limit=1)
    >>> len(hits), hits.total
    (1, 2)
    >>> hits[0].name
    'a.txt'
    """

    __slots__ = ("_pointer", "_turns", "_out", "_count", "__weakref__")

    def __init__(self, pointer: CData) -> None:
        """Takes a kestan_hits."""
        self._pointer = ffi.gc(pointer, lib.kestan_hits_free)
        self._turns = Turns()
        self._out = ffi.new("const kestan_hit**")
        count = ffi.new("size_t*")
        check(lib.kestan_hits_count(count, self._pointer), self._pointer)
        self._count: int = count[0]

    @property
    def total(self) -> int:
        """How many documents match, whatever the limit."""
        out = ffi.new("uint64_t*")
        with self._turns:
            check(lib.kestan_hits_total(out, self._pointer), self._pointer)
        return int(out[0])

    @property
    def notes(self) -> tuple[str, ...]:
        """How the query was read, and what of it was ignored, each as a line for a person."""
        return self._lines(lib.kestan_hits_note)

    @property
    def suggestions(self) -> tuple[str, ...]:
        """What may have been meant by words that no document has."""
        return self._lines(lib.kestan_hits_suggestion)

    def __len__(self) -> int:
        """Returns how many hits there are, which is at most the limit of the search."""
        return self._count

    @overload
    def __getitem__(self, position: int) -> Hit: ...

    @overload
    def __getitem__(self, position: slice) -> list[Hit]: ...

    def __getitem__(self, position: Union[int, slice]) -> Union[Hit, list[Hit]]:
        """Returns the hit at `position`, from 0, or from -1 backwards; or the list of a slice."""
        if isinstance(position, slice):
            return self._some(range(*position.indices(self._count)))
        if not isinstance(position, int):
            raise TypeError(f"hits are numbered by int or slice, not {type(position).__name__}")
        at = position + self._count if position < 0 else position
        if not 0 <= at < self._count:
            raise IndexError(f"there is no hit {position}: there are {self._count}")
        return self._some((at,))[0]

    def __iter__(self) -> Iterator[Hit]:
        """Iterates over the hits, the best first."""
        for first in range(0, self._count, _HITS_AT_ONCE):
            yield from self._some(range(first, min(first + _HITS_AT_ONCE, self._count)))

    def __repr__(self) -> str:
        """Shows how many there are, and the first ones."""
        shown = ", ".join(f"{hit.percent}% {hit.name!r}" for hit in self[:3])
        more = ", ..." if self._count > 3 else ""
        return f"<kestan.Hits {self._count} of {self.total}: [{shown}{more}]>"

    def _repr_html_(self) -> str:
        """Shows the notes, and the hits as a table, in notebooks."""
        notes = "".join(f"<p>{escape(note)}</p>\n" for note in self.notes)
        rows = "".join(_html_row(hit) for hit in self)
        return (f"{notes}<p>{self._count} of {self.total}</p>\n<table>\n<tr><th>percent</th>"
                f"<th>title</th><th>name</th><th>snippet</th></tr>\n{rows}</table>")

    def _some(self, positions: Iterable[int]) -> list[Hit]:
        """Returns the hits at these positions, which there are."""
        pointer, out, hits = self._pointer, self._out, []
        with self._turns:
            for position in positions:
                code = lib.kestan_hits_at(out, pointer, position)
                if code:
                    check(code, pointer)
                hits.append(Hit(self, out[0]))
        return hits

    def _lines(self, get: Callable[[CData, CData, CData, int], int]) -> tuple[str, ...]:
        out, length = ffi.new("const char**"), ffi.new("size_t*")
        lines: list[str] = []
        with self._turns:
            while (code := get(out, length, self._pointer, len(lines))) == lib.KESTAN_OK:
                lines.append(text_of(out[0], length[0]))
        if code != lib.KESTAN_ITEROVER:
            check(code, self._pointer)
        return tuple(lines)


def _html_row(hit: Hit) -> str:
    """Returns a row of the table: texts of documents are not HTML, so they are escaped."""
    try:
        fragments = hit._fragments(None)
    except NotFoundError:  # removed, and the reader was refreshed
        fragments = []
    snippet = "".join(f"<mark>{escape(part)}</mark>" if matches else escape(part)
                      for part, matches in fragments)
    name = escape(hit.name.encode("utf-8", "surrogateescape").decode("utf-8", "replace"))
    return (f"<tr><td>{hit.percent}</td><td>{escape(hit.title)}</td><td>{name}</td>"
            f"<td>{snippet}</td></tr>\n")
