# SPDX-License-Identifier: GPL-3.0-or-later
"""Whether the files of an index are whole."""

from __future__ import annotations

from typing import NamedTuple

from ._errors import check as check_code
from ._errors import check_opened
from ._native import CData, ffi, lib
from ._values import Path, name_of, path_bytes, text_of


class Finding(NamedTuple):
    """Something that a check has found."""

    is_fault: bool
    """False: it is a note, which harms nothing."""
    file: str
    key: bytes
    """The key of the record that it is about, or b"" for the file as a whole."""
    text: str
    """One line for a person."""


class Report(NamedTuple):
    """What a check has found."""

    faults: int
    """How many faults there are. The index is whole if there are none."""
    notes: int
    """How many notes there are."""
    findings: list[Finding]
    """The first 1,000 of each file."""


def check(path: Path) -> Report:
    """Reads all files of the index at `path` and says whether they are whole. Changes nothing.

    Raises FileNotFoundError if there is no index, VersionError, or OSError. A damaged index is no
    exception: its faults are in the report.

    >>> kestan.check("notes.index").faults
    0
    """
    encoded = path_bytes(path)
    out = ffi.new("kestan_report**")
    code = lib.kestan_check(out, encoded, len(encoded))
    report = ffi.gc(out[0], lib.kestan_report_free) if out[0] else ffi.NULL
    check_opened(code, report, encoded)
    faults, notes = ffi.new("uint64_t*"), ffi.new("uint64_t*")
    check_code(lib.kestan_report_counts(faults, notes, report), report)
    return Report(faults[0], notes[0], _findings(report))


def _findings(report: CData) -> list[Finding]:
    findings = []
    out = ffi.new("const kestan_finding**")
    while (code := lib.kestan_report_next(out, report)) == lib.KESTAN_OK:
        finding = out[0]
        findings.append(Finding(
            bool(finding.is_fault),
            name_of(finding.file, finding.file_length),
            ffi.unpack(finding.key, finding.key_length),
            text_of(finding.text, finding.text_length),
        ))
    if code != lib.KESTAN_ITEROVER:
        check_code(code, report)
    return findings
