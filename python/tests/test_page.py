# SPDX-License-Identifier: GPL-3.0-or-later
"""docs/python.md and README.md do what they show."""

from __future__ import annotations

import doctest
import re
import sys
from pathlib import Path
from types import ModuleType

import pytest

from helpers import PAGE, PYTHON_FOLDER


def blocks(page: Path, language: str) -> list[tuple[int, str]]:
    """Returns the blocks of a page in a language, each after the number of its first line."""
    text = page.read_text(encoding="utf-8")
    found = re.finditer(rf"^```{language}\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
    return [(text.count("\n", 0, block.start(1)), block.group(1)) for block in found]


def test_the_tutorial_prints_what_it_shows(
        tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(tmp_path)
    typed = ModuleType("__main__")  # where child processes look for functions
    monkeypatch.setitem(sys.modules, "__main__", typed)
    parser = doctest.DocTestParser()
    runner = doctest.DocTestRunner()
    pages = blocks(PAGE, "pycon")
    assert len(pages) > 10
    for line, block in pages:
        test = parser.get_doctest(block, {}, "python.md", str(PAGE), line)
        test.globs = vars(typed)
        runner.run(test, clear_globs=False)
    assert runner.failures == 0


def test_the_tutorial_has_no_python_that_is_not_run() -> None:
    fences = re.findall(r"^```(\w+)$", PAGE.read_text(encoding="utf-8"), re.MULTILINE)
    assert set(fences) == {"pycon", "sh"}


@pytest.mark.parametrize("readme, prints", [
    (PYTHON_FOLDER / "README.md", "100 a.txt Roses are red\n"),
    (PYTHON_FOLDER.parent / "README.md",
     "100 roses.txt Roses are red\n95 violets.txt Violets are blue, roses red\n"),
])
def test_a_readme_shows_a_program_that_works(
        readme: Path, prints: str, tmp_path: Path, monkeypatch: pytest.MonkeyPatch,
        capsys: pytest.CaptureFixture[str]) -> None:
    monkeypatch.chdir(tmp_path)
    [(_, program)] = blocks(readme, "python")
    exec(compile(program, str(readme), "exec"), {"__name__": "__main__"})
    assert capsys.readouterr().out == prints
