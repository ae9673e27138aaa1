# SPDX-License-Identifier: GPL-3.0-or-later
"""Python's values as C takes them, and back."""

from __future__ import annotations

import operator
import os
import sys
from typing import Any, Optional, Union

from ._native import CData, ffi

Name = Union[str, bytes]
Text = Union[str, bytes]
Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

MOST = 2 * sys.maxsize + 1
"""The largest size_t."""


def _wrong(value: object, argument: str, wanted: str) -> TypeError:
    return TypeError(f"{argument} must be {wanted}, not {type(value).__name__}")


def name_bytes(value: object, argument: str = "name") -> bytes:
    """Returns a document's name as bytes. As in names of files, each odd byte is a surrogate."""
    if isinstance(value, str):
        return value.encode("utf-8", "surrogateescape")
    if isinstance(value, bytes):
        return value
    raise _wrong(value, argument, "str or bytes")


def text_bytes(value: object, argument: str) -> bytes:
    """Returns a text as UTF-8. Halves of a character, which UTF-8 has not, become "?"."""
    if isinstance(value, str):
        try:
            return value.encode("utf-8", "surrogateescape")
        except UnicodeEncodeError:
            return value.encode("utf-8", "replace")
    if isinstance(value, bytes):
        return value
    raise _wrong(value, argument, "str or bytes")


def data_bytes(value: object, argument: str) -> bytes:
    """Returns bytes-like data as bytes."""
    if isinstance(value, bytes):
        return value
    if isinstance(value, (bytearray, memoryview)):
        return bytes(value)
    raise _wrong(value, argument, "bytes")


def path_bytes(value: object, argument: str = "path") -> bytes:
    """Returns the path of a file as bytes."""
    if not isinstance(value, (str, bytes, os.PathLike)):
        raise _wrong(value, argument, "str, bytes or os.PathLike")
    path = os.fsencode(value)
    if b"\0" in path:
        raise ValueError(f"{argument} has a zero byte")
    return path


def whole(value: Any, argument: str, least: int = 0, most: int = MOST) -> int:
    """Returns a whole number from `least` to `most`."""
    try:
        number = operator.index(value)
    except TypeError:
        raise _wrong(value, argument, "int") from None
    if number < least:
        raise ValueError(f"{argument} must be at least {least}, not {number}")
    if number > most:
        raise ValueError(f"{argument} must be at most {most}, not {number}")
    return number


def limit_of(value: Optional[int]) -> int:
    """Returns how many to return at most as C takes it, where 0 means all; so does None."""
    return 0 if value is None else whole(value, "limit")


def real(value: Any, argument: str) -> float:
    """Returns a number."""
    if isinstance(value, (int, float)):
        return float(value)
    raise _wrong(value, argument, "a number")


def set_bytes(struct: CData, member: str, value: bytes) -> CData:
    """Lends `value` to a string of a struct. Returns what must live as long as it is lent."""
    lent = ffi.from_buffer("char[]", value)
    setattr(struct, member, lent)
    setattr(struct, member + "_length", len(value))
    return lent


def name_of(pointer: CData, length: int) -> str:
    """Returns a document's name, or that of a file, that C has lent."""
    return ffi.unpack(pointer, length).decode("utf-8", "surrogateescape")


def text_of(pointer: CData, length: int) -> str:
    """Returns a text that C has lent."""
    return ffi.unpack(pointer, length).decode("utf-8", "replace")
