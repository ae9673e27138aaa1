#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints which lines and branches the tests miss. coverage.sh calls it.

    coverage_report.py FOLDER EXCLUSIONS

FOLDER holds all.json and all.lcov as llvm-cov exports them. A line of EXCLUSIONS names a branch that
no test reaches: its file, the condition as the code has it, and the reason, with " | " between them.
"""

import collections
import json
import pathlib
import sys

ROOT = pathlib.Path.cwd()
BRANCHES_WANTED = 0.98


def inside(name):
    path = pathlib.Path(name)
    return path.is_relative_to(ROOT / "kestan")


def read_lines(report):
    """Returns {(file, line): how often it ran}."""
    lines = collections.Counter()
    name = ""
    for entry in report.read_text().splitlines():
        key, _, value = entry.partition(":")
        if key == "SF":
            name = value
        elif key == "DA" and inside(name):
            line, count = value.split(",")[:2]
            lines[name, int(line)] += int(count)
    return lines


def read_branches(report):
    """Returns {(file, line, column, end line, end column, outcome): how often it was taken}."""
    branches = collections.Counter()
    for function in json.loads(report.read_text())["data"][0]["functions"]:
        for branch in function.get("branches", []):
            name = function["filenames"][branch[6]]
            if not inside(name):
                continue
            place = (name, *branch[:4])
            branches[(*place, True)] += branch[4]
            branches[(*place, False)] += branch[5]
    return branches


def source(name, line, column, end_line, end_column):
    lines = pathlib.Path(name).read_text().splitlines()[line - 1:end_line]
    lines[-1] = lines[-1][:end_column - 1]
    lines[0] = lines[0][column - 1:]
    return " ".join(part.strip() for part in lines)


def read_exclusions(path):
    """Returns {(file, condition): reason}."""
    exclusions = {}
    for line in path.read_text().splitlines():
        if line and not line.startswith("#"):
            name, condition, reason = line.split(" | ")
            exclusions[name, condition] = reason
    return exclusions


def share(reached, all_of_them):
    return f"{reached} of {all_of_them}, {100 * reached / all_of_them:.1f}%"


def main():
    folder = pathlib.Path(sys.argv[1])
    exclusions = read_exclusions(pathlib.Path(sys.argv[2]))
    lines = read_lines(folder / "all.lcov")
    branches = read_branches(folder / "all.json")
    missed_lines = sorted(place for place, count in lines.items() if count == 0)
    missed = sorted(place for place, count in branches.items() if count == 0)
    for name, line in missed_lines:
        print(f"line missed: {pathlib.Path(name).relative_to(ROOT)}:{line}")
    unexplained = 0
    for *place, outcome in missed:
        name = str(pathlib.Path(place[0]).relative_to(ROOT))
        condition = source(*place)
        reason = exclusions.get((name, condition), "no reason is known")
        unexplained += (name, condition) not in exclusions
        print(f"never {'true' if outcome else 'false'}: {name}:{place[1]}: {condition}: {reason}")
    print(f"lines: {share(len(lines) - len(missed_lines), len(lines))}")
    print(f"branches: {share(len(branches) - len(missed), len(branches))}")
    few = len(missed) > (1 - BRANCHES_WANTED) * len(branches)
    sys.exit(1 if missed_lines or few or unexplained else 0)


if __name__ == "__main__":
    main()
