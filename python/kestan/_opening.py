# SPDX-License-Identifier: GPL-3.0-or-later
"""Opening an index."""

from __future__ import annotations

from typing import Any, Literal, Optional, Sequence, Union, overload

from ._reader import Reader
from ._values import Path, path_bytes
from ._writer import ProgressFunction, Writer

_WRITER_OPTIONS = ("language", "memory_budget", "merge_factor", "sync", "threads", "positions",
                   "create", "progress")


@overload
def open(path: Union[Path, Sequence[Path]], mode: Literal["r"] = "r") -> Reader: ...


@overload
def open(
    path: Path,
    mode: Literal["w"],
    *,
    language: str = "",
    memory_budget: int = ...,
    merge_factor: int = ...,
    sync: bool = True,
    threads: int = 0,
    positions: bool = True,
    create: bool = True,
    progress: Optional[ProgressFunction] = None,
) -> Writer: ...


def open(path: Any, mode: str = "r", **options: Any) -> Union[Reader, Writer]:
    """Opens the index folder at `path`, to search it ("r") or to write it ("w").

    "r" returns a Reader. `path` may also be an index file, or a list of indexes, which are then
    searched as one.

    "w" returns a Writer, which adds, replaces and removes documents of the index, and makes it
    where there is none. It never empties an index that exists. Options:

    language       of the words, such as "german", "de" or "none"; as the index has it, or guessed,
                   if it is not said.
    create         False: raises FileNotFoundError where there is no index.
    positions      of a new index: False keeps no positions of words. It is smaller, and NEAR and
                   quotes match wherever all words are.
    sync           False: commits do not wait for the disk. They survive the end of the process, but
                   perhaps not a power cut.
    threads        that take documents apart; 0: one a core, at most 4.
    memory_budget  in bytes, after which documents are written as a segment: 256 MB.
    merge_factor   as many segments of a size are merged: 8.
    progress       is called now and then during commit() and compact() with a Progress; if it
                   returns False, or raises, that stops.

    Raises FileNotFoundError if there is no index to read, BusyError if another writer has it,
    DamagedError, VersionError, other kinds of OSError, and ValueError for a language that is not
    known.

    >>> with kestan.open("poems.index", "w", language="english") as index:
    ...     index.add("a.txt", "Roses are red")
    >>> with kestan.open(["poems.index", "notes.index"]) as both:
    ...     [hit.index for hit in both.search("red")]
    [0, 1]
    """
    if not isinstance(mode, str):
        raise TypeError(f"mode must be str, not {type(mode).__name__}")
    if mode not in ("r", "w"):
        raise ValueError(f'mode must be "r" or "w", not {mode!r}')
    for option in options:
        if option not in _WRITER_OPTIONS:
            raise TypeError(f"open() has no option {option!r}")
        if mode == "r":
            raise TypeError(f'{option!r} is an option of mode "w"')
    if mode == "w":
        return Writer._open(path_bytes(path), **options)
    paths = path if isinstance(path, (list, tuple)) else [path]
    if not paths:
        raise ValueError("there must be at least one path")
    return Reader._open([path_bytes(one) for one in paths])
