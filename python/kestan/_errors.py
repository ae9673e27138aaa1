# SPDX-License-Identifier: GPL-3.0-or-later
"""What goes wrong, as exceptions."""

from __future__ import annotations

import errno
import os
from typing import Optional

from ._native import CData, ffi, lib


class Error(Exception):
    """What Kestan's own errors have in common.

    What the system refuses is an OSError, such as PermissionError; an argument that makes no sense
    is a ValueError, and one of the wrong type a TypeError.
    """

    filename: Optional[str] = None
    """The file that the error is about, or None."""


class QueryError(Error):
    """A query cannot be read.

    >>> index.search('"red roses', strict=True)
    Traceback (most recent call last):
    ...
    kestan.QueryError: the quote has no partner, or stands within a word
    """

    column: Optional[int] = None
    """Where in the query, counted in characters from 0, or in bytes if it is bytes; or None."""


class BusyError(Error):
    """Another writer has the index."""


class DamagedError(Error):
    """A file of the index is missing, cut short or changed. kestan.check() tells more."""


class VersionError(Error):
    """The index is of another version of Kestan, or of a machine with another word size."""


class NotFoundError(Error, KeyError):
    """There is no document of that name."""

    # That of KeyError puts the message in quotes.
    __str__ = Exception.__str__


class ExistsError(Error):
    """A document of that name exists."""


class StoppedError(Error):
    """The progress function has stopped a commit or a compaction; Writer.commit() says what then
    is in the index."""


class ForkedError(Error):
    """The index was opened before fork(), by the parent process: open it again in this one."""


_KINDS: dict[int, type[Error]] = {
    lib.KESTAN_ENOTFOUND: NotFoundError,
    lib.KESTAN_EEXISTS: ExistsError,
    lib.KESTAN_EQUERY: QueryError,
    lib.KESTAN_EBUSY: BusyError,
    lib.KESTAN_EDAMAGED: DamagedError,
    lib.KESTAN_EVERSION: VersionError,
    lib.KESTAN_EINTERRUPTED: StoppedError,
    lib.KESTAN_EFORKED: ForkedError,
}

# For when the library has lost the message with the handle.
_PLAIN = {
    lib.KESTAN_ENOTFOUND: "not found",
    lib.KESTAN_EHANDLE: "the index is closed",
    lib.KESTAN_EFORKED: "the index was opened before fork(): open it again in this process",
    lib.KESTAN_ENOMEM: "out of memory",
}


def check(code: int, handle: CData) -> None:
    """Raises what `code` stands for, if it is an error. The message is that of `handle`."""
    if code < 0:
        raise error_of(code, handle)


def check_query(code: int, handle: CData, query: bytes, is_text: bool) -> None:
    """The same for a call that was handed `query`, whose column is turned into characters."""
    if code >= 0:
        return
    error = error_of(code, handle)
    if is_text and isinstance(error, QueryError) and error.column is not None:
        error.column = len(query[: error.column].decode("utf-8", "replace"))
    raise error


def check_opened(code: int, handle: CData, *paths: bytes) -> None:
    """The same for a call that opens the indexes at `paths`."""
    if code == lib.KESTAN_ENOTFOUND:
        message, file, _, _ = _last_error(code, handle)
        names = [os.fsdecode(path) for path in paths]
        inside = (name for name in names if file and f"{file}/".startswith(f"{name}/"))
        raise FileNotFoundError(errno.ENOENT, message, next(inside, names[0]))
    check(code, handle)


def error_of(code: int, handle: CData) -> Exception:
    """Returns the exception that `code`, the last error of `handle`, stands for."""
    message, file, number, column = _last_error(code, handle)
    if code == lib.KESTAN_ESYSTEM:
        return OSError(number or errno.EIO, message, file)
    if code == lib.KESTAN_ENOTFOUND and file:
        return FileNotFoundError(errno.ENOENT, message, file)
    if code == lib.KESTAN_ENOMEM:
        return MemoryError(message)
    if file:
        message = f"{file}: {message}"
    if code not in _KINDS:
        return ValueError(message)
    error = _KINDS[code](message)
    error.filename = file
    if isinstance(error, QueryError):
        error.column = column
    return error


def _last_error(code: int, handle: CData) -> tuple[str, Optional[str], int, Optional[int]]:
    """Returns the message, the file or None, errno or 0, and the column or None."""
    out = ffi.new("const kestan_error**")
    if not handle or lib.kestan_last_error(out, handle) < 0 or not out[0] or out[0].code != code:
        return _PLAIN.get(code, f"error {code}"), None, 0, None
    error = out[0]
    message, file = line_of(error)
    column = None if error.column < 0 else int(error.column)
    return message, file or None, error.system_error, column


def line_of(error: CData) -> tuple[str, str]:
    """Returns the message and the file, or "", of a kestan_error."""
    message = ffi.unpack(error.message, error.message_length).decode("utf-8", "replace")
    return message, os.fsdecode(ffi.unpack(error.file, error.file_length))
