# SPDX-License-Identifier: GPL-3.0-or-later
"""Kestan, a small full-text search engine.

>>> import kestan
>>> with kestan.open("flowers.index", "w") as index:
...     index.add("a.txt", "Roses are red", title="Roses")
...     index.add("b.txt", "Violets are blue, roses too", title="Violets")
>>> with kestan.open("flowers.index") as index:
...     for hit in index.search("red roses"):
...         print(hit.percent, hit.name, hit.title, hit.snippet())
100 a.txt Roses Roses are red

docs/python.md is a tutorial, docs/queries.md describes the language of queries.
"""

from __future__ import annotations

from ._callbacks import Candidate, Progress
from ._documents import Document, Statistics, Term
from ._errors import (
    BusyError,
    DamagedError,
    Error,
    ExistsError,
    ForkedError,
    NotFoundError,
    QueryError,
    StoppedError,
    VersionError,
)
from ._hits import Hit, Hits
from ._native import ffi, lib
from ._opening import open
from ._query import Query
from ._reader import Reader
from ._report import Finding, Report, check
from ._writer import Writer

__all__ = [
    "BusyError",
    "Candidate",
    "DamagedError",
    "Document",
    "Error",
    "ExistsError",
    "Finding",
    "ForkedError",
    "Hit",
    "Hits",
    "NotFoundError",
    "Progress",
    "Query",
    "QueryError",
    "Reader",
    "Report",
    "Statistics",
    "StoppedError",
    "Term",
    "VersionError",
    "Writer",
    "check",
    "open",
]


def _version() -> str:
    parts = [ffi.new("int*") for _ in range(3)]
    lib.kestan_version(*parts)
    return ".".join(str(part[0]) for part in parts)


__version__ = _version()

for _name in __all__:
    globals()[_name].__module__ = __name__  # where it is to be imported from
del _name
