# SPDX-License-Identifier: GPL-3.0-or-later
"""mypy --strict is content with the package, its tests and programs that use it."""

from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path

from helpers import PYTHON_FOLDER

PROGRAM = """
from pathlib import Path
import kestan

with kestan.open(Path("notes.index"), "w", language="english", sync=False) as writer:
    reveal_type(writer)
    writer.add(b"a.txt", "Roses are red", title="Roses")
    reveal_type(writer.add_many([("a", "b"), ("a", "b", "c")]))
with kestan.open(["notes.index", b"more.index"]) as index:
    reveal_type(index)
    hits = index.search("rose*", limit=None, words="any", filter=lambda it: it.title != "")
    reveal_type(hits[0])
    reveal_type(hits[1:])
    reveal_type([hit.snippet() for hit in hits])
    reveal_type(index.word("a").near(index.word("b"), 3) & ~index.prefix("c"))
    reveal_type(index["a.txt"].added)
    reveal_type(list(index.terms())[0].documents)
"""

WRONG = """
import kestan
kestan.open("a", "x")
kestan.open("a", sync=False)
kestan.open(5)
with kestan.open("a") as index:
    index.add("a", "b")
    index.search(5)
    index.search("a", limit="5")
    index.word("a") & "b"
with kestan.open("a", "w") as writer:
    writer.add("a")
    writer.add("a", "b", data="text")
    writer.search("a")
"""


def mypy(folder: Path, *arguments: str) -> subprocess.CompletedProcess[str]:
    """Runs mypy --strict."""
    return subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(folder / "cache"),
         *arguments],
        cwd=folder, capture_output=True, text=True, check=False,
        env={**os.environ, "MYPYPATH": str(PYTHON_FOLDER), "PYTHONPATH": ""})


def test_the_package_its_stubs_and_its_build_have_no_error(tmp_path: Path) -> None:
    done = mypy(tmp_path, "--config-file", str(PYTHON_FOLDER / "pyproject.toml"),
                str(PYTHON_FOLDER / "kestan"), str(PYTHON_FOLDER / "build_kestan.py"))
    assert done.stdout.startswith("Success"), done.stdout + done.stderr


def test_the_tests_have_no_error(tmp_path: Path) -> None:
    tests = str(PYTHON_FOLDER / "tests")
    done = mypy(tmp_path, "--config-file", str(PYTHON_FOLDER / "pyproject.toml"), tests)
    assert done.stdout.startswith("Success"), done.stdout + done.stderr


def test_the_stubs_of_the_extension_have_no_error(tmp_path: Path) -> None:
    done = subprocess.run([sys.executable, "-m", "mypy.stubtest", "kestan._kestan"], cwd=tmp_path,
                          capture_output=True, text=True, check=False,
                          env={**os.environ, "MYPYPATH": str(PYTHON_FOLDER)})
    assert done.stdout.startswith("Success"), done.stdout + done.stderr


def test_a_program_has_the_types_that_it_expects(tmp_path: Path) -> None:
    (tmp_path / "program.py").write_text(PROGRAM)
    done = mypy(tmp_path, "program.py")
    assert [line.split('"')[1] for line in done.stdout.splitlines() if "Revealed" in line] == [
        "kestan._writer.Writer", "builtins.int", "kestan._reader.Reader", "kestan._hits.Hit",
        "builtins.list[kestan._hits.Hit]", "builtins.list[builtins.str]", "kestan._query.Query",
        "datetime.datetime", "builtins.int"], done.stdout + done.stderr
    assert "error" not in done.stdout


def test_a_program_with_wrong_types_is_told_line_by_line(tmp_path: Path) -> None:
    (tmp_path / "wrong.py").write_text(WRONG)
    done = mypy(tmp_path, "wrong.py")
    lines = {int(line.split(":")[1]) for line in done.stdout.splitlines() if ": error:" in line}
    assert lines == {3, 4, 5, 7, 8, 9, 10, 12, 13, 14}, done.stdout + done.stderr
