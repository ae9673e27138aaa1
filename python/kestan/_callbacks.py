# SPDX-License-Identifier: GPL-3.0-or-later
"""What C calls in Python. An exception stops the call that C is in, and comes out of it."""

from __future__ import annotations

import atexit
import os
import threading
import time
from datetime import datetime, timezone
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
    def added(self) -> datetime:
        """When it was added or last renamed, in UTC."""
        out = ffi.new("uint32_t*")
        check(lib.kestan_filtered_added(out, self._lent()), self._document)
        return datetime.fromtimestamp(out[0], timezone.utc)

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


_running: list[Callback] = []
_orphans: list[BaseException] = []
_is_ending = False


class Callback:
    """A function that C calls, and the exception that it has raised.

    C is handed `ffi.new_handle(callback)`, which must live as long as C may call. Calls that may
    call it are made in a `with callback:` block, and followed by raise_error().

    A daemon thread that calls back after the interpreter has ended would be ended by it in the
    middle of C++, which ends the process with an error. So such calls are stopped before that.
    """

    def __init__(self, function: Optional[Callable[..., object]]) -> None:
        self.function = function
        self.error: Optional[BaseException] = None

    def __enter__(self) -> None:
        _running.append(self)
        if must_stop():
            self.__exit__()

    def __exit__(self, *_: object) -> None:
        if self in _running:  # or a fork() in the call has emptied it
            _running.remove(self)
        while must_stop():  # as all daemon threads do that want the interpreter from now on
            time.sleep(3600)

    def raise_error(self) -> None:
        """Raises the exception that the function has raised, if any, and forgets it."""
        error, self.error = self.error, None
        if error is None and _orphans:
            error = _orphans.pop()
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
    if trace is None:  # Ctrl-C before the function began
        _orphans.append(error)
        return
    callback: Callback = ffi.from_handle(trace.tb_frame.f_locals["payload"])
    if callback.error is None:
        callback.error = error


@ffi.def_extern(name="kestan_python_progress", error=1, onerror=_keep_error)
def _progress(progress: CData, payload: CData) -> int:
    """Lets Python handle signals, such as Ctrl-C, and tells the function if there is one."""
    function = ffi.from_handle(payload).function
    if must_stop():
        return 1
    if function is None:
        return 0
    phase = "merging" if progress.phase == lib.KESTAN_PHASE_MERGING else "writing"
    stop = function(Progress(phase, progress.done_bytes, progress.all_bytes)) is False
    return 1 if stop else 0


@ffi.def_extern(name="kestan_python_filter", error=-1, onerror=_keep_error)
def _filter(document: CData, payload: CData) -> int:
    """Asks the function of a search whether it wants a document."""
    if must_stop():
        return -1
    candidate = Candidate(document)
    try:
        return 1 if ffi.from_handle(payload).function(candidate) else 0
    finally:
        candidate._document = None


def must_stop() -> bool:
    """Returns whether the interpreter is ending, and this is not the thread that ends it."""
    return _is_ending and threading.current_thread() is not threading.main_thread()


os.register_at_fork(after_in_child=_running.clear)  # the threads are the parent's


@atexit.register
def _end() -> None:
    """Waits until no other thread is in a call that calls back; they are stopped at once.

    A function of the program that does not return is waited for no longer than 5 seconds.
    """
    global _is_ending
    _is_ending = True
    deadline = time.monotonic() + 5
    while _running and time.monotonic() < deadline:
        time.sleep(0.001)
