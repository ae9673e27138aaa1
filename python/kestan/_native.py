# SPDX-License-Identifier: GPL-3.0-or-later
"""The extension module, and the type of what it deals in."""

from __future__ import annotations

from typing import Any

from ._kestan import ffi, lib

CData = Any
"""A pointer, a struct or a function of C. cffi checks their types when they are used."""

__all__ = ["CData", "ffi", "lib"]
