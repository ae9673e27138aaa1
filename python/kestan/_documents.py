# SPDX-License-Identifier: GPL-3.0-or-later
"""What a reader tells of its documents, its words and itself."""

from __future__ import annotations

from datetime import datetime, timezone
from typing import NamedTuple

from ._native import CData, ffi
from ._values import name_of, text_of


class Document(NamedTuple):
    """A document of an index, without its text, which the index does not keep."""

    name: str
    title: str
    summary: str
    """What snippets are cut from where no text is at hand."""
    data: bytes
    """What came with it as data=."""
    words: int
    """How many it has."""
    added: datetime
    """When it was added or last renamed, in UTC."""

    @classmethod
    def _of(cls, info: CData) -> Document:
        return cls(
            name_of(info.name, info.name_length),
            text_of(info.title, info.title_length),
            text_of(info.summary, info.summary_length),
            ffi.unpack(info.data, info.data_length),
            info.words,
            datetime.fromtimestamp(info.added, timezone.utc),
        )


class Term(NamedTuple):
    """A word of an index."""

    term: str
    documents: int
    """How many documents have it."""

    @classmethod
    def _of(cls, term: CData) -> Term:
        return cls(text_of(term.term, term.term_length), term.documents)


class Statistics(NamedTuple):
    """What an index holds, all in all."""

    documents: int
    """Without removed ones."""
    removed_documents: int
    """Those whose words still take space."""
    words: int
    """Of all documents, each as often as it occurs."""
    segments: int
    bytes: int
    """Of all files."""
    positions: bool
    """Whether the index keeps where words stand, for NEAR and quotes."""
