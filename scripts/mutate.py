#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes small changes to the library, one at a time, and counts how many of them the tests catch.

    scripts/mutate.py [--count N] [--seed N] [--skip N] [--jobs N] [--quick] [FILE...]
    scripts/mutate.py --planted [PATTERN] [--jobs N]

Each change is made to a copy of the tree in build/mutation/tree: a comparison, an operator, a constant
or a boolean becomes another one, or a statement is dropped. --skip leaves out the first N, to go on
with a run that was ended. The tests of the changed file's directory run first, then the others; --quick
leaves out those that make calls fail or damage files. A change that does not compile is not counted. A
change that no test catches is printed; scripts/mutation_survivors.txt lists those that make no difference,
with the reason. Ends with status 1 if less than 95% of the others are caught. A change takes from seconds
to two minutes.

With --planted it makes the mistakes of scripts/planted_mistakes.txt instead, all or those whose file or
sentence matches, and runs for each the tests named there. Ends with status 1 unless every one is
caught. A mistake takes some seconds.
"""

import argparse
import pathlib
import random
import re
import sys
import time

import mutation_tree as tree
import planted_mistakes

ROOT = tree.ROOT
WANTED = 0.95
SECONDS_FOR_TESTS = 300
SLOW = r"\w*faults|hostile|fuzz"
TESTS_OF_DIRECTORY = {"maintenance": "maintenance|repair"}  # the others: those of its name

# What becomes what, where the code has blanks around operators.
SWAPS = [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "), (" == ", " != "),
         (" != ", " == "), (" && ", " || "), (" || ", " && "), (" + ", " - "), (" - ", " + "),
         (" += ", " -= "), (" * ", " + "), (" / ", " * "), ("true", "false"), ("false", "true"),
         ("++", "--"), (" | ", " & "), (" & ", " | ")]
NUMBER = re.compile(r"(?<![\w.\"'])\d+(?![\w.\"'])")
DECLARATION = re.compile(r"(return|using|const|static|auto|case|break|continue|template|friend)\b"
                         r"|[\w:<>*&, ]+[ >*&]\w+(\{.*\}|\(.*\)( const)?( override)?| = .*)?;")


class Change:
    """Line `number` (from 1) of `file` becomes `after`."""

    def __init__(self, file, number, before, after):
        self.file, self.number, self.before, self.after = file, number, before, after

    def describe(self):
        name = self.file.relative_to(ROOT)
        return f"{name}: {self.before.strip()} => {self.after.strip() or '(dropped)'}"


def code_of(line):
    """The line without its comment and with strings made blank."""
    line = re.sub(r'"(\\.|[^"\\])*"', lambda text: " " * len(text[0]), line)
    return re.sub(r"//.*", "", line)


def changes_of(file):
    for number, line in enumerate(file.read_text().splitlines(), 1):
        code = code_of(line)
        if code.lstrip().startswith(("#", "template", "operator")) or " = delete" in code:
            continue
        for old, new in SWAPS:
            for found in re.finditer(re.escape(old), code):
                yield Change(file, number, line, line[:found.start()] + new + line[found.end():])
        for found in NUMBER.finditer(code):
            changed = line[:found.start()] + str(int(found[0]) + 1) + line[found.end():]
            yield Change(file, number, line, changed)
        if code.startswith(" ") and code.rstrip().endswith(";") and not DECLARATION.match(code.lstrip()):
            yield Change(file, number, line, "")


def choose(files, count, seed):
    """Draws from every file as its share of all possible changes, at least one each."""
    draw = random.Random(seed)
    by_file = {file: list(changes_of(file)) for file in files}
    total = sum(map(len, by_file.values()))
    chosen = []
    for file in files:
        share = max(1, round(count * len(by_file[file]) / max(total, 1)))
        chosen += draw.sample(by_file[file], min(share, len(by_file[file])))
    draw.shuffle(chosen)
    return chosen


def tests_pass(directory, jobs, quick):
    own = TESTS_OF_DIRECTORY.get(directory, directory)
    left_out = f"^(docs|install|{own}|{SLOW})/"

    def pass_each(*chosen):
        return tree.ctest(jobs, SECONDS_FOR_TESTS, "--stop-on-failure", *chosen)

    return (pass_each("-R", f"^({own})/") and pass_each("-E", left_out)
            and (quick or pass_each("-R", f"^({SLOW})/")))


def prepare(jobs):
    tree.synchronise()
    if not (tree.configure(with_command=False) and tree.build(jobs) and tests_pass("storage", jobs, True)):
        sys.exit("the unchanged tree does not pass its tests")


def judge(change, jobs, quick):
    """Returns "caught", "survived" or "does not compile"."""
    name = change.file.relative_to(ROOT)
    lines = (ROOT / name).read_text().splitlines()
    lines[change.number - 1] = change.after
    with tree.changed(name, "\n".join(lines) + "\n"):
        if not tree.build(jobs):
            return "does not compile"
        directory = name.relative_to("kestan").parts[0]
        return "survived" if tests_pass(directory, jobs, quick) else "caught"


def read_reasons():
    """Returns {change: why no test can see it}."""
    path = ROOT / "scripts" / "mutation_survivors.txt"
    lines = path.read_text().splitlines() if path.exists() else []
    entries = [line.split(" | ", 1) for line in lines if line and not line.startswith("#")]
    return {change: reason for change, reason in entries}


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=120)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--skip", type=int, default=0)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--planted", nargs="?", const="", metavar="PATTERN")
    parser.add_argument("files", nargs="*", type=lambda name: pathlib.Path(name).resolve())
    arguments = parser.parse_args()
    if arguments.planted is not None:
        sys.exit(0 if planted_mistakes.replay(arguments.planted, arguments.jobs) else 1)

    files = arguments.files or sorted([*ROOT.glob("kestan/*/*.cc"), *ROOT.glob("kestan/*/*.h")])
    reasons = read_reasons()
    verdicts = {"caught": 0, "survived": 0, "does not compile": 0}
    explained = 0
    prepare(arguments.jobs)
    for change in choose(files, arguments.count, arguments.seed)[arguments.skip:]:
        began = time.monotonic()
        verdict = judge(change, arguments.jobs, arguments.quick)
        verdicts[verdict] += 1
        explained += 1 if verdict == "survived" and change.describe() in reasons else 0
        why = reasons.get(change.describe(), "no reason is known") if verdict == "survived" else ""
        print(f"{verdict} ({time.monotonic() - began:.0f} s): {change.describe()}"
              f"{': ' + why if why else ''}", flush=True)
    judged = verdicts["caught"] + verdicts["survived"]
    print(f"{judged} changes, {verdicts['caught']} caught ({100 * verdicts['caught'] / judged:.1f}%), "
          f"{explained} of the others make no difference that a test could see, "
          f"{verdicts['does not compile']} more did not compile")
    sys.exit(0 if verdicts["caught"] >= WANTED * (judged - explained) else 1)


if __name__ == "__main__":
    main()
