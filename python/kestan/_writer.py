# SPDX-License-Identifier: GPL-3.0-or-later
"""Writing an index."""

from __future__ import annotations

import os
import warnings
from collections.abc import Mapping
from types import TracebackType
from typing import Any, Callable, Iterable, Optional, Union

from ._callbacks import Callback, Progress
from ._errors import check, check_opened, error_of, line_of
from ._handles import Handle, Unpicklable
from ._native import CData, ffi, lib
from ._values import Name, Text, data_bytes, name_bytes, set_bytes, text_bytes, whole

ProgressFunction = Callable[[Progress], Optional[bool]]
Item = Union[tuple[Name, Text], tuple[Name, Text, Text], list[str], Mapping[str, Any]]

_MOST_THREADS = 2**32 - 1


class Writer(Unpicklable):
    """The one writer of an index. What it changes is seen by readers after a commit.

    A `with` block commits when it ends well; an exception forgets what was not committed. A writer
    is for one thread at a time: a call while another thread is in one raises ValueError.

    >>> with kestan.open("poems.index", "w") as index:
    ...     index.add("a.txt", "Roses are red", title="Roses")
    >>> len(kestan.open("poems.index"))
    1
    """

    _handle: Handle
    _path: str
    _process: int
    _callback: Callback
    _payload: CData

    def __init__(self, *_: object) -> None:
        """Refuses: kestan.open() makes writers."""
        raise TypeError('writers are made by kestan.open(path, "w")')

    @classmethod
    def _open(
        cls,
        path: bytes,
        *,
        language: str = "",
        memory_budget: Optional[int] = None,
        merge_factor: Optional[int] = None,
        sync: bool = True,
        threads: int = 0,
        positions: bool = True,
        create: bool = True,
        progress: Optional[ProgressFunction] = None,
    ) -> Writer:
        if not isinstance(language, str):
            raise TypeError(f"language must be str, not {type(language).__name__}")
        if progress is not None and not callable(progress):
            raise TypeError(f"progress must be callable, not {type(progress).__name__}")
        options = ffi.new("kestan_writer_options*")
        lib.kestan_writer_options_init(options, lib.KESTAN_WRITER_OPTIONS_VERSION)
        lent = set_bytes(options, "language", text_bytes(language, "language"))
        options.sync, options.create = bool(sync), bool(create)
        options.with_positions = bool(positions)
        options.threads = whole(threads, "threads", 0, _MOST_THREADS)
        if memory_budget is not None:
            options.memory_budget = whole(memory_budget, "memory_budget")
        if merge_factor is not None:
            options.merge_factor = whole(merge_factor, "merge_factor", 2, _MOST_THREADS)
        callback = Callback(progress)
        payload = ffi.new_handle(callback)
        options.progress, options.progress_payload = lib.kestan_python_progress, payload
        out = ffi.new("kestan_writer**")
        code = lib.kestan_writer_open(out, path, len(path), options)
        del lent  # copied
        pointer = ffi.gc(out[0], lib.kestan_writer_free) if out[0] else ffi.NULL
        check_opened(code, pointer, path)
        writer = cls.__new__(cls)
        writer._callback, writer._payload = callback, payload
        writer._path = os.fsdecode(path)
        writer._process = os.getpid()
        writer._handle = Handle(pointer, "writer")
        return writer

    def add(
        self,
        name: Name,
        text: Text,
        *,
        title: Text = "",
        summary: Optional[Text] = None,
        data: bytes = b"",
    ) -> None:
        """Adds a document, in place of one that has its name.

        name     its key, up to 4,096 bytes, like the name of a file.
        text     split into words, which the index keeps.
        title    comes with hits.
        summary  what snippets are cut from when there is no text at hand. None keeps the text
                 itself; "" keeps nothing, which makes the index smaller.
        data     whatever the program wants back with the document.

        Raises ValueError for a name that no document can have.

        >>> writer.add("a.txt", "Roses are red", title="Roses", data=b"page 7")
        """
        words = text_bytes(text, "text")
        document = ffi.new("kestan_document*")
        document.version = lib.KESTAN_DOCUMENT_VERSION
        lent = (  # until the call is done
            set_bytes(document, "name", name_bytes(name)),
            set_bytes(document, "text", words),
            set_bytes(document, "title", text_bytes(title, "title")),
            set_bytes(document, "summary",
                      words if summary is None else text_bytes(summary, "summary")),
            set_bytes(document, "data", data_bytes(data, "data")),
        )
        self._run(lib.kestan_writer_add, document)
        del lent

    def add_many(self, documents: Iterable[Item]) -> int:
        """Adds documents and returns how many.

        Each is a (name, text), a (name, text, title), such a list, as csv.reader() gives them, or a
        mapping of add()'s arguments. If one cannot be added, those before it are: roll back, or let
        the exception leave the `with` block, to forget them.

        >>> writer.add_many([("a.txt", "Roses are red", "Roses"),
        ...                  {"name": "b.txt", "text": "Violets are blue", "data": b"page 8"}])
        2
        """
        if self.closed:
            raise ValueError("the writer is closed")
        count = 0
        item: Any
        for item in documents:
            if isinstance(item, (tuple, list)) and len(item) == 2:
                self.add(item[0], item[1])
            elif isinstance(item, (tuple, list)) and len(item) == 3:
                self.add(item[0], item[1], title=item[2])
            elif isinstance(item, Mapping):
                self.add(**item)
            else:
                raise TypeError(f"document {count} must be (name, text), (name, text, title) or "
                                f"a mapping of add()'s arguments, not {_shape(item)}")
            count += 1
        return count

    def remove(self, name: Name) -> None:
        """Removes a document. Raises NotFoundError, which is a KeyError, if there is none.

        >>> writer.remove("c.txt")
        Traceback (most recent call last):
        ...
        kestan.NotFoundError: there is no document 'c.txt'
        """
        key = name_bytes(name)
        with self._handle as writer:
            check(lib.kestan_writer_remove(writer, key, len(key)), writer)

    def rename(self, old: Name, new: Name) -> None:
        """Renames a document. Raises NotFoundError, or ExistsError if there is one named `new`."""
        before, after = name_bytes(old, "old"), name_bytes(new, "new")
        with self._handle as writer:
            code = lib.kestan_writer_rename(writer, before, len(before), after, len(after))
            check(code, writer)

    def commit(self) -> None:
        """Writes all changes and lets readers see them: all of them, or, on an error, none.

        Then segments are merged if there are many; after an error of merging the changes are in
        the index.

        Ctrl-C, an exception in the progress function, and its returning False, which raises
        StoppedError, stop it: the index is as it was before. If that was while writing, the changes
        are rolled back: make them again and commit. While merging, they are in the index already.
        """
        self._run(lib.kestan_writer_commit)

    def compact(self) -> None:
        """Commits, and merges all segments into as few as possible, without removed documents."""
        self._run(lib.kestan_writer_compact)

    def rollback(self) -> None:
        """Forgets all changes since the last commit. After an error of writing, this goes on."""
        with self._handle as writer:
            check(lib.kestan_writer_rollback(writer), writer)

    def warnings(self) -> list[str]:
        """Returns what no call has raised and a person should know, each once, as lines.

        >>> writer.warnings()
        []
        """
        lines = []
        out = ffi.new("const kestan_error**")
        with self._handle as writer:
            while (code := lib.kestan_writer_warning(out, writer)) == lib.KESTAN_OK:
                message, file = line_of(out[0])
                lines.append(f"{file}: {message}" if file else message)
            if code != lib.KESTAN_ITEROVER:
                check(code, writer)
        return lines

    def close(self) -> None:
        """Closes the writer. What was not committed is lost."""
        self._handle.close()

    @property
    def closed(self) -> bool:
        """Whether it is closed."""
        return self._handle.closed

    def __enter__(self) -> Writer:
        if self.closed:
            raise ValueError("the writer is closed")
        return self

    def __exit__(
        self,
        kind: Optional[type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        """Commits if the block ended well, and closes the writer in any case."""
        try:
            if kind is None and not self.closed:
                self.commit()
        finally:
            self.close()

    def __repr__(self) -> str:
        """Shows where the index is."""
        return f"<kestan.Writer {self._path!r}{' (closed)' if self.closed else ''}>"

    def __del__(self) -> None:
        handle = getattr(self, "_handle", None)
        if handle is not None and not handle.closed and os.getpid() == self._process:
            warnings.warn(f"unclosed {self!r}: what was not committed is lost", ResourceWarning,
                          source=self)
            handle.close()

    def _run(self, function: Callable[..., int], *arguments: CData) -> None:
        """Calls what may call the progress function. What that stops is rolled back."""
        with self._handle as writer:
            with self._callback:
                code = function(writer, *arguments)
            if code < 0:
                error = error_of(code, writer)
                if code == lib.KESTAN_EINVALID:  # maybe as another thread is in a call
                    raise error
                if code == lib.KESTAN_EINTERRUPTED:
                    check(lib.kestan_writer_rollback(writer), writer)
                self._callback.raise_error()
                raise error
            self._callback.raise_error()


def _shape(item: object) -> str:
    """Returns what a thing is, for a message."""
    if isinstance(item, (tuple, list)):
        return f"a {type(item).__name__} of {len(item)}"
    return type(item).__name__
