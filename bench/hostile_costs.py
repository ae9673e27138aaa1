#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What do hostile documents and hostile queries cost?

Makes an index of 2,000 generated documents in a temporary folder, then runs the real command on
inputs of three sizes each that are made to be slow, and prints a Markdown table: the time of the
processor in seconds and the most memory in MB, of one whole command. The same inputs in every run.
Ends with an error if a command fails, or if one that takes more than a tenth of a second takes three
times as much longer as its input is larger. The cost of words with one gdbm hash is printed only.

Example: bench/hostile_costs.py build/release/cli/kestan
"""

import argparse
import itertools
import os
import pathlib
import random
import subprocess
import sys
import tempfile

LETTERS = "abcdefghijklmnopqrstuvwxyz"
ARGUMENT_BYTES = 100000  # the system takes no longer ones; several are joined by blanks


def vocabulary():
    """30,000 different words, the same in every run."""
    chance = random.Random(1)
    words = {}
    while len(words) < 30000:
        words["".join(chance.choices(LETTERS, k=chance.randint(4, 9)))] = True
    return list(words)


def write_corpus(folder, words):
    chance = random.Random(2)
    weights = list(itertools.accumulate(1 / (i + 10) for i in range(len(words))))
    for i in range(2000):
        text = " ".join(chance.choices(words, cum_weights=weights, k=200))
        (folder / f"{i}.txt").write_text(text)


def run(command, *arguments, allowed=(0, 1)):
    """Runs the command; returns the seconds of the processor and the MB that it took.

    GNU time starts it, for what a child of this process took would include this process.
    """
    done = subprocess.run(["/usr/bin/time", "-q", "-f", "%U %S %M", command, *arguments],
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, errors="replace")
    if done.returncode not in allowed:
        sys.exit(f"{arguments[0]} ended with {done.returncode}: {done.stderr[-300:]}")
    user, system, kilobytes = done.stderr.splitlines()[-1].split()
    return float(user) + float(system), int(kilobytes) / 1024


def pieces(query):
    """The query as arguments that the system takes: cut at blanks."""
    lines, line = [], []
    size = 0
    for word in query.split(" "):
        if size + len(word) > ARGUMENT_BYTES:
            lines.append(" ".join(line))
            line, size = [], 0
        line.append(word)
        size += len(word) + 1
    return lines + [" ".join(line)]


def colliding(count):
    """Words to which gdbm gives one hash. It adds up the letters, each moved to the left by five bits
    more than the one before, up to 24: in these places "ab" adds as much as "Ac"."""
    places = (0, 2, 5, 7, 10)
    for choice in itertools.islice(itertools.product(("ab", "Ac"), repeat=len(places)), count):
        word = list("z" * 14)
        for place, pair in zip(places, choice):
            word[place:place + 2] = pair
        yield "".join(word)


def documents():
    """Each case: a name, three sizes, and the text of one document of that size."""
    chance = random.Random(3)
    other = ["".join(chance.choices(LETTERS, k=12)) for _ in range(400000)]
    return [
        ("n different words", (10000, 100000, 400000), lambda n: " ".join(other[:n])),
        ("n times the same word", (10000, 100000, 1000000), lambda n: "same " * n),
        ("one word of n bytes", (10000, 1000000, 10000000), lambda n: "a" * n),
        ("n letters with accents, in one word", (10000, 100000, 1000000), lambda n: "\u00e9" * n),
        ("n letters with accents, one a word", (10000, 100000, 1000000), lambda n: "\u00e9 " * n),
        ("n opening brackets and quotes", (10000, 100000, 1000000), lambda n: "(\"" * n + " a"),
    ]


def queries(words):
    """Each case: a name, three sizes, options, and the query of that size."""
    sizes = (20, 1000, 10000)
    some = (20, 200, 1000)
    join = lambda between: lambda n: between.join(words[:n])
    same = lambda between, word: lambda n: between.join([word] * n)
    return [
        ("OR of n words, all the same", sizes, same(" OR ", words[0])),
        ("OR of n words, all different", sizes, join(" OR ")),
        ("AND of n words, all the same", sizes, same(" ", words[0])),
        ("AND of n words, all different", sizes, join(" ")),
        ("OR of n NOTs", sizes, lambda n: " OR ".join("NOT " + word for word in words[:n])),
        ("AND of n NOTs", sizes, lambda n: words[0] + " -" + " -".join(words[1:n])),
        ("OR of n `a*`", some, same(" OR ", "a*")),
        ("OR of n different prefixes", some, lambda n: " OR ".join(w[:3] + "*" for w in words[:n])),
        ("OR of n different `word~`", some, lambda n: " OR ".join(w + "~" for w in words[:n])),
        ("n words in quotes, all the same", sizes, lambda n: '"' + " ".join([words[0]] * n) + '"'),
        ("chain of n words with NEAR/9, the same", sizes, same(" NEAR/9 ", words[0])),
        ("chain of n words with NEAR/9, different", sizes, join(" NEAR/9 ")),
        ("chain of n `a*` with NEAR/9", some, same(" NEAR/9 ", "a*")),
        ("n nested parentheses", (1000, 100000, 800000),
         lambda n: " ".join(["(" * 1000] * (n // 1000)) + " a " + " ".join([")" * 1000] * (n // 1000))),
        ("n nested groups of OR", sizes, lambda n: " OR (".join(words[:n]) + ")" * (n - 1)),
        ("one word of n letters", (1000, 10000, 90000), lambda n: "a" * n),
    ]


class Table:
    """Prints rows as they are measured, and judges how they grow."""

    def __init__(self):
        self.too_steep = []

    def add(self, name, sizes, costs):
        cells = [f"{n:,}: {seconds:.2f} s, {mb:.0f} MB" for n, (seconds, mb) in zip(sizes, costs)]
        print(f"| {name} | " + " | ".join(cells) + " |", flush=True)
        for (n, (before, _)), (m, (after, _)) in itertools.pairwise(zip(sizes, costs)):
            if after > 0.1 and after > 3 * m / n * max(before, 0.01):
                self.too_steep.append(name)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("kestan")
    kestan = str(pathlib.Path(parser.parse_args().kestan).resolve())
    words = vocabulary()
    table = Table()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        texts = folder / "texts"
        texts.mkdir()
        write_corpus(texts, words)
        index = str(folder / "index")
        run(kestan, "index", index, str(texts))
        print("| a document of | small | larger | largest |\n|---|---|---|---|")
        for case, sizes, text in documents():
            costs = []
            for n in sizes:
                (folder / "document").write_text(text(n))
                costs.append(run(kestan, "index", str(folder / f"index-{n}"), str(folder / "document")))
                (folder / f"index-{n}").unlink()
            table.add(case, sizes, costs)
        print("\n| a query of | small | larger | largest |\n|---|---|---|---|")
        for case, sizes, query in queries(words):
            table.add(case, sizes, [run(kestan, "search", index, "--", *pieces(query(n))) for n in sizes])
        sizes = (20, 1000, 10000)
        table.add("question (`--any`) of n words", sizes,
                  [run(kestan, "search", "--any", index, "--", *pieces(" ".join(words[:n])))
                   for n in sizes])
        repeated_word(kestan, folder, table)
        sys.stdout.flush()
        gdbm_hash(kestan, folder)
    if table.too_steep:
        sys.exit("grows faster than its input: " + ", ".join(table.too_steep))


def repeated_word(kestan, folder, table):
    """A document of n equal words, asked for that word near itself, and in quotes."""
    sizes = (6000, 60000, 600000)
    for query in ('same NEAR/5 same', '(same OR other) NEAR/5 (same OR others)'):
        costs = []
        for n in sizes:
            (folder / "document").write_text("same other others " * (n // 3))
            index = str(folder / f"same-{n}")
            run(kestan, "index", index, str(folder / "document"))
            costs.append(run(kestan, "search", index, "--", query))
            os.unlink(index)
        table.add(f"`{query}` in a document of n words", sizes, costs)


def gdbm_hash(kestan, folder):
    print("\n| words of one hash of gdbm | |\n|---|---|")
    for n in (8, 16, 17):
        (folder / "document").write_text(" ".join(colliding(n)))
        index = folder / f"hash-{n}"
        seconds, mb = run(kestan, "index", str(index), str(folder / "document"), allowed=(0, 2))
        end = f"{index.stat().st_size / 1e6:.1f} MB" if index.exists() else "no index"
        print(f"| {n} | {seconds:.2f} s, {mb:.0f} MB of memory, {end} |")


if __name__ == "__main__":
    main()
