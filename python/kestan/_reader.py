# SPDX-License-Identifier: GPL-3.0-or-later
"""Reading an index."""

from __future__ import annotations

import os
from contextlib import nullcontext
from types import TracebackType
from typing import Callable, Iterator, Optional, Sequence, Union

from ._callbacks import Callback, Candidate
from ._documents import Document, Statistics, Term
from ._errors import NotFoundError, check, check_opened, check_query
from ._handles import Handle, Lent, Unpicklable
from ._hits import Hits
from ._native import CData, ffi, lib
from ._query import Query, plain_query
from ._values import Name, Text, limit_of, name_bytes, real, text_bytes

_WORDS = {
    "best": lib.KESTAN_WORDS_BEST,
    "all": lib.KESTAN_WORDS_ALL,
    "any": lib.KESTAN_WORDS_ANY,
}

Filter = Callable[[Candidate], object]


class Reader(Unpicklable):
    """A snapshot of an index, or of several: no later commit changes it.

    Any number of threads may use one. It is much like a mapping from names to documents: len(),
    `in`, [], get(), keys() and iteration work as there. What it has made may outlive it, and keeps
    the files open until then.

    >>> with kestan.open("notes.index") as index:
    ...     len(index), "a.txt" in index, index["a.txt"].title, list(index)
    (2, True, 'Roses', ['a.txt', 'b.txt'])
    """

    _handle: Handle
    _paths: list[str]

    def __init__(self, *_: object) -> None:
        """Refuses: kestan.open() makes readers."""
        raise TypeError("readers are made by kestan.open(path)")

    @classmethod
    def _open(cls, paths: Sequence[bytes]) -> Reader:
        out = ffi.new("kestan_reader**")
        lengths = [len(path) for path in paths]
        texts = [ffi.from_buffer("char[]", path) for path in paths]
        code = lib.kestan_reader_open_many(out, texts, lengths, len(paths))
        pointer = ffi.gc(out[0], lib.kestan_reader_free) if out[0] else ffi.NULL
        check_opened(code, pointer, *paths)
        reader = cls.__new__(cls)
        reader._handle = Handle(pointer, "reader")
        reader._paths = [os.fsdecode(path) for path in paths]
        return reader

    def search(
        self,
        query: Union[Text, Query],
        *,
        limit: Optional[int] = 10,
        words: str = "best",
        strict: bool = False,
        titles: bool = True,
        filter: Optional[Filter] = None,
        k1: Optional[float] = None,
        b: Optional[float] = None,
        proximity_bonus: Optional[float] = None,
        opening_bonus: Optional[float] = None,
    ) -> Hits:
        """Returns the documents that match `query`, the best first.

        query    a text in the language that docs/queries.md describes, or a Query.
        limit    how many hits to return; 0 or None: every match.
        words    what words side by side mean: "best" is what a person means, which is all words,
                 or any of them where no document has all; "all" is all of them, each as it is
                 written; "any" is any of them.
        strict   raises QueryError for what would else be left out of the query with a note.
        titles   whether hits have titles; without them, less is read.
        filter   is called with a Candidate for each document that matches, and returns whether it
                 is to be found; more than once for some, and from several threads. It cannot use
                 the reader that it filters for.
        k1, b, proximity_bonus, opening_bonus
                 the numbers of the ranking, which docs/quality.md explains.

        Raises DamagedError where a file contradicts itself, and what the filter raises.

        >>> [(hit.percent, hit.name) for hit in index.search("red roses")]
        [(100, 'a.txt')]
        >>> [hit.name for hit in index.search("roses", filter=lambda it: it.title != "Roses")]
        ['b.txt']
        """
        numbers = (k1, b, proximity_bonus, opening_bonus)
        options = _search_options(words, strict, titles, limit_of(limit), numbers)
        out = ffi.new("kestan_hits**")
        self._ask(lib.kestan_reader_search, lib.kestan_reader_search_query, out, query, options,
                  filter)
        return Hits(out[0])

    def count(
        self,
        query: Union[Text, Query],
        *,
        words: str = "best",
        strict: bool = False,
        filter: Optional[Filter] = None,
    ) -> int:
        """Returns how many documents match, which takes less time than to rank them.

        >>> index.count("roses"), index.count("roses AND NOT red")
        (2, 1)
        """
        options = _search_options(words, strict, True, 0, ())
        out = ffi.new("uint64_t*")
        self._ask(lib.kestan_reader_count, lib.kestan_reader_count_query, out, query, options,
                  filter)
        return int(out[0])

    def word(self, word: Text) -> Query:
        """Returns the query for a word and its other forms; see Query.

        Raises QueryError if there is no word in it.

        >>> index.count(index.word("rose"))
        2
        """
        return plain_query(self, lib.kestan_query_word, "word", "word", word)

    def prefix(self, prefix: Text) -> Query:
        """Returns the query for every word that begins with `prefix`.

        >>> index.count(index.prefix("ro"))
        2
        """
        return plain_query(self, lib.kestan_query_prefix, "prefix", "prefix", prefix)

    def phrase(self, text: Text) -> Query:
        """Returns the query for the words of `text` as written, one right after the other.

        >>> index.count(index.phrase("roses are red")), index.count(index.phrase("red roses"))
        (1, 0)
        """
        return plain_query(self, lib.kestan_query_phrase, "phrase", "text", text)

    def suggest(self, word: Text, limit: Optional[int] = 0) -> list[str]:
        """Returns words of the index that a misspelled word may mean, the likeliest first.

        At most `limit`, or all that come into question. None if a document has the word.

        >>> index.suggest("rsoes")
        ['roses']
        """
        terms = self._terms(lib.kestan_reader_suggest, text_bytes(word, "word"), limit_of(limit))
        return [term.term for term in terms]

    def terms(self, prefix: Text = "", limit: Optional[int] = 0) -> Iterator[Term]:
        """Iterates over the words that begin with `prefix`, at most `limit` if that is not 0.

        They are in the order of the bytes that the index keeps of them: ASCII first.

        >>> list(index.terms("r"))
        [Term(term='red', documents=1), Term(term='roses', documents=2)]
        """
        return self._terms(lib.kestan_reader_terms, text_bytes(prefix, "prefix"), limit_of(limit))

    def documents(self) -> Iterator[Document]:
        """Iterates over all documents, in the order of adding as far as merging has kept it.

        >>> [document.name for document in index.documents()]
        ['a.txt', 'b.txt']
        """
        out = ffi.new("kestan_documents**")
        with self._handle as reader:
            check(lib.kestan_reader_documents(out, reader), reader)
        return _document_iterator(ffi.gc(out[0], lib.kestan_documents_free))

    def refresh(self) -> bool:
        """Takes a new snapshot if there was a commit, and returns whether there was.

        Waits until the searches of other threads are done.
        """
        changed = ffi.new("int*")
        with self._handle as reader:
            check(lib.kestan_reader_refresh(changed, reader), reader)
        return bool(changed[0])

    def statistics(self) -> Statistics:
        """Returns what the index holds, all in all.

        >>> index.statistics().words
        6
        """
        out = ffi.new("kestan_statistics*")
        lib.kestan_statistics_init(out, lib.KESTAN_STATISTICS_VERSION)
        with self._handle as reader:
            check(lib.kestan_reader_statistics(out, reader), reader)
        return Statistics(out.documents, out.removed_documents, out.words, out.segments, out.bytes,
                          bool(out.with_positions))

    def close(self) -> None:
        """Closes the index. What other threads have begun is finished first."""
        self._handle.close()

    @property
    def closed(self) -> bool:
        """Whether it is closed."""
        return self._handle.closed

    def __len__(self) -> int:
        """Returns how many documents there are."""
        return self.statistics().documents

    def __contains__(self, name: Name) -> bool:
        """Returns whether there is a document of that name."""
        return self._find(name_bytes(name)) is not None

    def __getitem__(self, name: Name) -> Document:
        """Returns the document of that name, or raises NotFoundError, which is a KeyError."""
        encoded = name_bytes(name)
        found = self._find(encoded)
        if found is None:
            raise NotFoundError(f"there is no document {name!r}")
        return next(_document_iterator(found))

    def get(self, name: Name, default: Optional[Document] = None) -> Optional[Document]:
        """Returns the document of that name, or `default` if there is none."""
        found = self._find(name_bytes(name))
        return default if found is None else next(_document_iterator(found))

    def keys(self) -> Iterator[str]:
        """Iterates over the names of all documents, so that dict(reader) works."""
        return iter(self)

    def __iter__(self) -> Iterator[str]:
        """Iterates over the names of all documents."""
        return (document.name for document in self.documents())

    def __enter__(self) -> Reader:
        if self.closed:
            raise ValueError("the reader is closed")
        return self

    def __exit__(
        self,
        kind: Optional[type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        """Shows where the index is."""
        paths = self._paths[0] if len(self._paths) == 1 else self._paths
        return f"<kestan.Reader {paths!r}{' (closed)' if self.closed else ''}>"

    def _ask(
        self,
        by_text: Callable[..., int],
        by_query: Callable[..., int],
        out: CData,
        query: Union[Text, Query],
        options: CData,
        filter: Optional[Filter],
    ) -> None:
        """Puts a query of either kind, with a filter if there is one."""
        callback = None
        if filter is not None:
            callback, payload = _with_filter(options, filter)
        if isinstance(query, Query):
            if query._reader is not self:
                raise ValueError("the query was made by a different reader")
            encoded = b""
        elif isinstance(query, (str, bytes)):
            encoded = text_bytes(query, "query")
        else:
            raise TypeError(f"query must be str, bytes or a Query, not {type(query).__name__}")
        with self._handle as reader:
            with callback or nullcontext():
                if isinstance(query, Query):
                    code = by_query(out, reader, query._pointer, options)
                else:
                    code = by_text(out, reader, encoded, len(encoded), options)
            if callback is not None:
                callback.raise_error()
            check_query(code, reader, encoded, isinstance(query, str))

    def _terms(self, get: Callable[..., int], text: bytes, limit: int) -> Iterator[Term]:
        out = ffi.new("kestan_terms**")
        with self._handle as reader:
            check(get(out, reader, text, len(text), limit), reader)
        terms = ffi.gc(out[0], lib.kestan_terms_free)
        return Lent(terms, lib.kestan_terms_next, ffi.new("const kestan_term**"), Term._of)

    def _find(self, name: bytes) -> Optional[CData]:
        """Returns a kestan_documents of the document of that name, or None."""
        out = ffi.new("kestan_documents**")
        with self._handle as reader:
            code = lib.kestan_reader_find(out, reader, name, len(name))
            if code == lib.KESTAN_ENOTFOUND:
                return None
            check(code, reader)
        return ffi.gc(out[0], lib.kestan_documents_free)


def _document_iterator(documents: CData) -> Iterator[Document]:
    """Takes a kestan_documents that is freed by ffi.gc()."""
    out = ffi.new("const kestan_document_info**")
    return Lent(documents, lib.kestan_documents_next, out, Document._of)


def _search_options(
    words: str, strict: bool, titles: bool, limit: int, numbers: Sequence[Optional[float]]
) -> CData:
    """Returns a kestan_search_options. `numbers` that are None keep their defaults."""
    if not isinstance(words, str):
        raise TypeError(f"words must be str, not {type(words).__name__}")
    if words not in _WORDS:
        raise ValueError(f'words must be "best", "all" or "any", not {words!r}')
    options = ffi.new("kestan_search_options*")
    lib.kestan_search_options_init(options, lib.KESTAN_SEARCH_OPTIONS_VERSION)
    options.words = _WORDS[words]
    options.strict = bool(strict)
    options.with_titles = bool(titles)
    options.limit = limit
    for number, member in zip(numbers, ("k1", "b", "proximity_bonus", "opening_bonus")):
        if number is not None:
            setattr(options, member, real(number, member))
    return options


def _with_filter(options: CData, filter: Filter) -> tuple[Callback, CData]:
    """Puts the filter into the options. Returns what must live until the search is done."""
    if not callable(filter):
        raise TypeError(f"filter must be callable, not {type(filter).__name__}")
    callback = Callback(filter)
    payload = ffi.new_handle(callback)
    options.filter = lib.kestan_python_filter
    options.filter_payload = payload
    return callback, payload
