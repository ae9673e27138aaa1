# SPDX-License-Identifier: GPL-3.0-or-later
"""Handles of C: when they are freed, and who may use them."""

from __future__ import annotations

import os
import threading
from types import TracebackType
from typing import Callable, Generic, Iterator, NoReturn, Optional, TypeVar

from ._errors import ForkedError, check
from ._native import CData, ffi, lib

Item = TypeVar("Item")


class Unpicklable:
    """What belongs to its process: copies would share what is freed once."""

    __slots__ = ()

    def __reduce_ex__(self, _: object) -> NoReturn:
        raise TypeError(f"a {type(self).__name__} cannot be copied or pickled: "
                        "open the index in each process")


class Handle:
    """A handle that threads may use while one of them closes it. It is freed after the last use.

    `with handle as pointer:` is a use, and raises ValueError once the handle is closed.

    There is no lock, which a fork() at the wrong time would leave locked for ever: a use is entered
    before it looks whether the handle is closed, and close() says so before it looks for uses.
    """

    __slots__ = ("_pointer", "_uses", "_what", "closed")

    def __init__(self, pointer: CData, what: str) -> None:
        """Takes what ffi.gc() has returned. `what` is what messages call it."""
        self._pointer = pointer
        self._uses: list[None] = []
        self._what = what
        self.closed = False

    def __enter__(self) -> CData:
        self._uses.append(None)
        if self.closed:
            self.__exit__()
            raise ValueError(f"the {self._what} is closed")
        return self._pointer

    def __exit__(
        self,
        kind: Optional[type[BaseException]] = None,
        error: Optional[BaseException] = None,
        trace: Optional[TracebackType] = None,
    ) -> None:
        self._uses.pop()
        if self.closed and not self._uses:
            ffi.release(self._pointer)

    def close(self) -> None:
        """Frees the handle, or lets the last use do it. A second time nothing happens."""
        self.closed = True
        if not self._uses:
            ffi.release(self._pointer)


class Turns:
    """A lock for what C lets one thread use at a time."""

    __slots__ = ("_lock", "_process")

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._process = os.getpid()

    def __enter__(self) -> None:
        if os.getpid() != self._process:  # where another thread of the parent may have the lock
            raise ForkedError("this was made before fork(): open the index again in this process")
        self._lock.acquire()

    def __exit__(self, *_: object) -> None:
        self._lock.release()


class Lent(Iterator[Item], Generic[Item]):
    """Iterates over what C lends item by item. It may outlive the index that made it."""

    __slots__ = ("_iterator", "_next", "_out", "_made", "_turns")

    def __init__(
        self,
        iterator: CData,
        step: Callable[[CData, CData], int],
        out: CData,
        made: Callable[[CData], Item],
    ) -> None:
        """`step(out, iterator)` gets the next item, of which `made(out[0])` makes a Python one."""
        self._iterator = iterator
        self._next = step
        self._out = out
        self._made = made
        self._turns = Turns()

    def __iter__(self) -> Lent[Item]:
        return self

    def __next__(self) -> Item:
        with self._turns:
            code = self._next(self._out, self._iterator)
            if code == lib.KESTAN_ITEROVER:
                raise StopIteration
            check(code, self._iterator)
            return self._made(self._out[0])
