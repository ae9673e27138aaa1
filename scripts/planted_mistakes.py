# SPDX-License-Identifier: GPL-3.0-or-later
"""Mistakes written by hand, each with the tests that must notice it."""

import re
import time

import mutation_tree as tree

LIST = tree.ROOT / "scripts" / "planted_mistakes.txt"
SECONDS_FOR_TESTS = 300


class Mistake:
    """A sentence, a file, (old text, new text) for each of its places, and a pattern of tests."""

    def __init__(self, sentence):
        self.sentence, self.file, self.tests, self.edits = sentence, None, None, []

    def targets(self):
        return {f"{folder}_tests" for folder in re.findall(r"(\w+)/", self.tests)}

    def content(self):
        """Returns the file with the mistake in it; None if it has no place for it, or two."""
        content = (tree.ROOT / self.file).read_text()
        for old, new in self.edits:
            if content.count(old) != 1:
                return None
            content = content.replace(old, new or "")
        return content


def read():
    """Reads the list; docs of its form are at its head."""
    mistakes = []
    for line in LIST.read_text().splitlines():
        kind, _, text = line.partition(" ")
        if not line or kind == "#":
            continue
        if kind == "==":
            mistakes.append(Mistake(text))
        elif kind == "file":
            mistakes[-1].file = text
        elif kind == "tests":
            mistakes[-1].tests = text
        elif kind == "-":
            mistakes[-1].edits.append((text, None))
        elif kind == "+":
            old, new = mistakes[-1].edits.pop()
            mistakes[-1].edits.append((old, text if new is None else f"{new}\n{text}"))
        else:
            raise SystemExit(f"{LIST.name}: what is '{line}'?")
    return mistakes


def plant(mistake, jobs):
    """Returns what came of it, and the names of the tests that noticed it."""
    content = mistake.content()
    if content is None:
        return "does not apply", []
    with tree.changed(mistake.file, content):
        if not tree.build(jobs, sorted(mistake.targets())):
            return "does not compile", []
        failed = tree.failing_tests(mistake.tests, jobs, SECONDS_FOR_TESTS)
    return ("caught" if failed else "survived"), failed


def check_unchanged(mistakes, jobs):
    """Ends the program unless each mistake has tests, and these pass without it."""
    if not tree.build(jobs, sorted(set.union(*(mistake.targets() for mistake in mistakes)))):
        raise SystemExit("the unchanged tree does not compile")
    for tests in sorted({mistake.tests for mistake in mistakes}):
        failed = tree.failing_tests(tests, jobs, SECONDS_FOR_TESTS)
        if failed is None:
            raise SystemExit(f"there are no tests '{tests}'")
        if failed:
            raise SystemExit(f"the unchanged tree does not pass {' '.join(failed)}")


def replay(pattern, jobs):
    """Plants every mistake whose sentence or file matches. Returns whether all were caught."""
    mistakes = [mistake for mistake in read() if re.search(pattern, f"{mistake.file}: {mistake.sentence}")]
    if not mistakes:
        raise SystemExit("there is no such mistake")
    tree.synchronise()
    if not tree.configure(any("cli/" in mistake.file + mistake.tests for mistake in mistakes)):
        raise SystemExit("the copy cannot be configured")
    check_unchanged(mistakes, jobs)
    caught = 0
    for mistake in mistakes:
        began = time.monotonic()
        verdict, tests = plant(mistake, jobs)
        caught += verdict == "caught"
        print(f"{verdict} ({time.monotonic() - began:.0f} s): {mistake.sentence}", flush=True)
        for test in tests:
            print(f"    {test}", flush=True)
    print(f"{len(mistakes)} planted mistakes, {caught} caught")
    return caught == len(mistakes)
