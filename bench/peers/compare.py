#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs every engine of the peer comparison in turn and prints the tables. compare.sh calls it.

Each measurement is a process of its own; what is measured several times is taken in rounds, one
engine after the other, and stands in the tables as its median.
"""

import argparse
import array
import json
import os
import pathlib
import shutil
import subprocess
import sys

import tables

REFERENCE = "naive"
ENGINES = ["kestan", "kestan32", "kestan_search", "fts5", "fts5_contentless", "xapian", "lucene",
           "groonga"]
PACKAGES = ["libgdbm6", "libsqlite3-0", "libxapian30", "liblucene++0v5", "libgroonga0"]
BYTES_OF_A_PAGE = 1 << 20
FORMS = ["words", "as-is"]
STEP = 1000  # documents between two commits
COLD_QUERIES = 20


class Comparison:
    """One form of the corpus, all engines. `results[engine][what]` holds what each round measured:
    a [wall, cpu] pair or a number."""

    def __init__(self, arguments, form):
        self.arguments = arguments
        self.form = form
        self.corpus = arguments.corpus / form
        self.queries = arguments.corpus / "queries"
        self.results = {}

    def driver(self, engine):
        return self.arguments.bin / f"peer_{engine}"

    def folder(self, engine, name):
        return self.arguments.work / f"{self.form}-{engine}-{name}"

    def run(self, engine, *task):
        """Runs one measurement and returns its lines as (what, numbers)."""
        command = [str(self.driver(engine)), *map(str, task)]
        done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=False)
        if done.returncode != 0:
            sys.exit(f"{' '.join(command)} ended with {done.returncode}")
        return [(what, [float(number) for number in numbers])
                for what, *numbers in (line.split("\t") for line in done.stdout.splitlines())]

    def keep(self, engine, prefix, lines):
        for what, numbers in lines:
            value = numbers if len(numbers) > 1 else numbers[0]
            self.results.setdefault(engine, {}).setdefault(prefix + what, []).append(value)

    def index(self, engine, name, every):
        folder = self.folder(engine, name)
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        self.progress(engine, f"index, {name}")
        lines = self.run(engine, "index", folder, self.corpus, self.form, every)
        self.keep(engine, name + ".", lines)

    def optimise(self, engine):
        self.progress(engine, "optimise")
        self.keep(engine, "optimised.", self.run(engine, "optimise", self.folder(engine, "once")))

    def warm(self, engine, passes):
        self.progress(engine, "queries")
        answers = self.arguments.work / f"{self.form}-{engine}.answers"
        lines = self.run(engine, "query", self.folder(engine, "once"), self.queries, self.corpus,
                         answers, passes)
        self.keep(engine, "warm.", lines)

    def cold(self, engine):
        self.progress(engine, "cold queries")
        folder = self.folder(engine, "once")
        read_all(folder)
        for query in cold_queries(self.queries):
            self.keep(engine, f"cold.{query[0]}.", self.run(engine, "cold", folder, *query))

    def answers(self, engine):
        packed = array.array("I")
        packed.frombytes((self.arguments.work / f"{self.form}-{engine}.answers").read_bytes())
        lists, start = [], 0
        while start < len(packed):
            end = start + 1 + packed[start]
            lists.append(set(packed[start + 1:end]))
            start = end
        return lists

    def disagreements(self, engine):
        """Returns how many queries an engine answers otherwise than the reference, and how many
        documents it misses and has too many in all."""
        pairs = list(zip(self.answers(REFERENCE), self.answers(engine), strict=True))
        return [sum(right != found for right, found in pairs),
                sum(len(right - found) for right, found in pairs),
                sum(len(found - right) for right, found in pairs)]

    def progress(self, engine, what):
        print(f"{self.form}: {engine}: {what}", file=sys.stderr, flush=True)

    def measure(self, engines):
        self.index(REFERENCE, "once", 0)
        self.warm(REFERENCE, 1)
        for _ in range(self.arguments.rounds):
            for engine in engines:
                self.index(engine, "once", 0)
                self.index(engine, "steps", STEP)
        for engine in engines:
            self.optimise(engine)
            self.warm(engine, 3)
            self.cold(engine)
            self.results[engine]["wrong"] = self.disagreements(engine)
        return self.results


def read_all(folder):
    """Brings every file of an index into the page cache."""
    for path in folder.rglob("*"):
        if path.is_file():
            with open(path, "rb") as file:
                while file.read(BYTES_OF_A_PAGE):
                    pass


def cold_queries(path):
    """Returns up to COLD_QUERIES of each kind, evenly spread."""
    kinds = {}
    for line in path.read_text(encoding="ascii").splitlines():
        fields = line.split("\t")
        kinds.setdefault(fields[0], []).append([field for field in fields if field])
    return [queries[number * len(queries) // COLD_QUERIES]
            for queries in kinds.values() for number in range(COLD_QUERIES)]


def versions_of_packages():
    lines = []
    for package in PACKAGES:
        done = subprocess.run(["dpkg-query", "-W", package], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, check=False)
        if done.returncode == 0:
            lines.append(" ".join(done.stdout.split()))
    return lines


def machine():
    model = "unknown processor"
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    system = os.uname()
    return (f"{len(os.sched_getaffinity(0))} cores, {model}, {system.sysname} {system.release} "
            f"{system.machine}, load when it began {os.getloadavg()[0]:.1f}")


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("--bin", type=pathlib.Path, help="the folder of the peer_ programs")
    parser.add_argument("--corpus", type=pathlib.Path, help="what make_corpus.py wrote")
    parser.add_argument("--work", type=pathlib.Path, help="a folder for the indexes")
    parser.add_argument("--rounds", type=int, default=3, help="how often to index")
    parser.add_argument("--forms", default=",".join(FORMS), help="which forms of the corpus")
    parser.add_argument("--clock", choices=["wall", "cpu"], default="wall")
    parser.add_argument("--results", type=pathlib.Path,
                        help="print the tables of this file again and measure nothing")
    return parser.parse_args()


def measure_all(arguments):
    engines = [engine for engine in ENGINES if (arguments.bin / f"peer_{engine}").exists()]
    report = {"machine": machine(), "packages": versions_of_packages(), "engines": engines,
              "forms": {}}
    for form in arguments.forms.split(","):
        comparison = Comparison(arguments, form)
        report["forms"][form] = comparison.measure(engines)
        report["documents"] = sum(1 for _ in documents(arguments.corpus / form))
        report.setdefault("corpus_bytes", {})[form] = (arguments.corpus / form).stat().st_size
    (arguments.work / "results.json").write_text(json.dumps(report, indent=1))
    return report


def documents(path):
    with open(path, "rb") as corpus:
        while header := corpus.readline():
            corpus.seek(int(header.split()[1]) + 1, os.SEEK_CUR)
            yield header


def main():
    arguments = parse_arguments()
    report = json.loads(arguments.results.read_text()) if arguments.results else (
        measure_all(arguments))
    print(tables.markdown(report, arguments.clock))
    wrong = [engine for results in report["forms"].values()
             for engine in report["engines"] if results[engine]["wrong"][0]]
    sys.exit(1 if set(wrong) & set(tables.OURS) else 0)


if __name__ == "__main__":
    main()
