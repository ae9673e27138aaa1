# SPDX-License-Identifier: GPL-3.0-or-later
"""What C calls in Python. An exception stops the call that C is in, and comes out of it."""

from __future__ import annotations

from types import TracebackType
from typing import Callable, NamedTuple, Optional

from ._errors import check
from ._native import CData, ffi, lib
from ._values import name_of, text_of


class Progress(NamedTuple):
    """How far a commit or a compaction has come."""

    phase: str
    """"writing" or "merging"."""
    done: int
    """How many bytes are done."""
    total: int
    """Of how many."""


class Candidate:
    """A document that matches, as the filter of a search sees it. It lasts for that call only."""

    __slots__ = ("_document",)

    def __init__(self, document: CData) -> None:
        self._document = document

    @property
    def name(self) -> str:
        """Its name."""
        return name_of(*self._string(lib.kestan_filtered_name))

    @property
    def title(self) -> str:
        """Its title, or ""."""
        return text_of(*self._string(lib.kestan_filtered_title))

    @property
    def summary(self) -> str:
        """Its summary, or ""."""
        return text_of(*self._string(lib.kestan_filtered_summary))

    @property
    def data(self) -> bytes:
        """The data that came with it."""
        return ffi.unpack(*self._string(lib.kestan_filtered_data))

    @property
    def added(self) -> int:
        """When it was added or last renamed, in seconds since 1970."""
        out = ffi.new("uint32_t*")
        check(lib.kestan_filtered_added(out, self._lent()), self._document)
        return int(out[0])

    @property
    def index(self) -> int:
        """Which of the opened indexes has it, from 0."""
        out = ffi.new("size_t*")
        check(lib.kestan_filtered_index(out, self._lent()), self._document)
        return int(out[0])

    def _lent(self) -> CData:
        if self._document is None:
            raise ValueError("the filter has returned: what it was shown is gone")
        return self._document

    def _string(self, get: Callable[[CData, CData, CData], int]) -> tuple[CData, int]:
        out, length = ffi.new("const char**"), ffi.new("size_t*")
        check(get(out, length, self._lent()), self._document)
        return out[0], length[0]


class Callback:
    """A function that C calls, and the exception that it has raised.

    C is handed `ffi.new_handle(callback)`, which must live as long as C may call.
    """

    def __init__(self, function: Optional[Callable[..., object]]) -> None:
        self.function = function
        self.error: Optional[BaseException] = None

    def raise_error(self) -> None:
        """Raises the exception that the function has raised, if any, and forgets it."""
        error, self.error = self.error, None
        if error is not None:
            try:
                raise error
            finally:
                del error  # a cycle with this frame

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self.function!r}>"


def _keep_error(
    _: type[BaseException], error: BaseException, trace: Optional[TracebackType]
) -> None:
    """Keeps an exception for the thread that waits for C."""
    if trace is not None:
        callback: Callback = ffi.from_handle(trace.tb_frame.f_locals["payload"])
        callback.error = callback.error or error


@ffi.def_extern(name="kestan_python_progress", error=1, onerror=_keep_error)
def _progress(progress: CData, payload: CData) -> int:
    """Lets Python handle signals, such as Ctrl-C, and tells the function if there is one."""
    function = ffi.from_handle(payload).function
    if function is None:
        return 0
    phase = "merging" if progress.phase == lib.KESTAN_PHASE_MERGING else "writing"
    stop = function(Progress(phase, progress.done_bytes, progress.all_bytes)) is False
    return 1 if stop else 0


@ffi.def_extern(name="kestan_python_filter", error=-1, onerror=_keep_error)
def _filter(document: CData, payload: CData) -> int:
    """Asks the function of a search whether it wants a document."""
    candidate = Candidate(document)
    try:
        return 1 if ffi.from_handle(payload).function(candidate) else 0
    finally:
        candidate._document = None
