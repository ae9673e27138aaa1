# SPDX-License-Identifier: GPL-3.0-or-later
"""The examples in docstrings do what they show, and everything public has a docstring."""

from __future__ import annotations

import doctest
import inspect
from pathlib import Path
from typing import Any, Iterator

import pytest

import kestan


def public() -> Iterator[tuple[str, Any]]:
    """Returns all that is public, with what is public of classes."""
    yield "kestan", kestan
    for name in kestan.__all__:
        thing = getattr(kestan, name)
        yield name, thing
        if inspect.isclass(thing):
            for member, value in vars(thing).items():
                value = getattr(value, "__func__", value)
                is_code = isinstance(value, property) or inspect.isfunction(value)
                if is_code and (not member.startswith("_") or member in ("__and__", "__len__")):
                    yield f"{name}.{member}", value


@pytest.mark.parametrize("name, thing", [pytest.param(*one, id=one[0]) for one in public()])
def test_everything_public_has_a_docstring(name: str, thing: Any) -> None:
    assert inspect.getdoc(thing)


def examples() -> list[doctest.DocTest]:
    """Returns the docstrings that have examples."""
    finder = doctest.DocTestFinder(recurse=False)
    tests = (test for name, thing in public() for test in finder.find(thing, name, module=False))
    return [test for test in tests if test.examples]


@pytest.mark.parametrize("test", examples(), ids=[test.name for test in examples()])
def test_the_examples_of_a_docstring_do_what_they_show(
        test: doctest.DocTest, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(tmp_path)
    with kestan.open("notes.index", "w") as made:
        made.add("a.txt", "Roses are red", title="Roses")
        made.add("b.txt", "Violets like roses", title="Violets")
    runner = doctest.DocTestRunner()
    with kestan.open("notes.index") as index, kestan.open("other.index", "w") as writer:
        test.globs = {"kestan": kestan, "index": index, "writer": writer}
        runner.run(test)
    assert runner.failures == 0


def test_many_docstrings_have_examples() -> None:
    assert len(examples()) >= 20
