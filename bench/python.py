#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What does Python cost? Kestan through Python beside Kestan through C++, SQLite FTS5 and Xapian.

Each engine adds the documents of the corpus, which are in memory, to a new index in one commit that
does not wait for the disk, and answers the queries of the corpus with the names of the ten best
hits. Each round is a new process for each engine, one after the other; a query is asked five times
in it, and the fewest microseconds count. What is printed are medians of the rounds, in Markdown.

Ends with an error if Kestan through Python gives another answer than through C++, takes more than
1.4 times as long to index, more than 1.2 times and 30 microseconds for a query of any kind on
average, or more than another engine through Python takes.

    bench/compare.sh --documents 65535 --rounds 1      # makes the corpus
    PYTHONPATH=build/release/python/lib bench/python.py \\
        --host build/release/bench/python_host --corpus build/bench/corpus-65535

Kestan's package is that of PYTHONPATH; the others are those of Debian: python3-xapian, and the
sqlite3 of Python itself.
"""

import argparse
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

TIMES = 5
BEST = 10
KINDS = ("word", "and", "near1", "near10", "or", "andnot")


def read_texts(path, count):
    """Returns the first documents of the corpus as (name, text)."""
    texts = []
    with open(path, "rb") as corpus:
        while len(texts) < count and (line := corpus.readline()):
            name, size = line.decode().split()
            texts.append((name, corpus.read(int(size)).decode("utf-8", "replace")))
            corpus.readline()
    return texts


def read_queries(path):
    """Returns the queries as (kind, first word, second word)."""
    return [line.rstrip("\n").split("\t") for line in open(path, encoding="utf-8")]


class Kestan:
    """The package kestan."""

    def __init__(self, folder, threads):
        import kestan
        self.kestan, self.path, self.threads = kestan, folder + "/kestan", threads

    def index(self, texts):
        with self.kestan.open(self.path, "w", sync=False, threads=self.threads) as index:
            for name, text in texts:
                index.add(name, text, summary="")

    def start(self):
        self.reader = self.kestan.open(self.path)

    @staticmethod
    def query(kind, first, second):
        joins = {"and": "AND", "or": "OR", "near1": "NEAR/1", "near10": "NEAR/10"}
        if kind == "word":
            return first
        return f"{first} -{second}" if kind == "andnot" else f"{first} {joins[kind]} {second}"

    def ask(self, query):
        hits = self.reader.search(query, limit=BEST, words="all", titles=False)
        return hits.total, [hit.name for hit in hits]


class Sqlite:
    """SQLite FTS5 as in compare.sh: in one transaction, with what README.md of this folder says."""

    def __init__(self, folder, threads):
        import sqlite3
        self.db = sqlite3.connect(folder + "/fts5", isolation_level=None)
        for pragma in ("journal_mode=WAL", "synchronous=OFF", "locking_mode=EXCLUSIVE",
                       "cache_size=-262144", "mmap_size=1073741824"):
            self.db.execute("PRAGMA " + pragma)

    def index(self, texts):
        self.db.execute("CREATE VIRTUAL TABLE words USING fts5(name UNINDEXED, body)")
        self.db.execute("BEGIN")
        self.db.executemany("INSERT INTO words VALUES (?, ?)", texts)
        self.db.execute("COMMIT")

    def start(self):
        pass

    @staticmethod
    def query(kind, first, second):
        joins = {"and": "AND", "or": "OR", "andnot": "NOT"}
        if kind == "word":
            return f'"{first}"'
        if kind in joins:
            return f'"{first}" {joins[kind]} "{second}"'
        return f'NEAR("{first}" "{second}", {int(kind[4:]) - 1})'

    def ask(self, query):
        found = self.db.execute(
            "SELECT name FROM words WHERE words MATCH ? ORDER BY rank LIMIT ?", (query, BEST))
        return None, [name for name, in found]


class Xapian:
    """Xapian with positions, as its own TermGenerator splits texts, without stems."""

    def __init__(self, folder, threads):
        import xapian
        self.xapian, self.path = xapian, folder + "/xapian"

    def index(self, texts):
        db = self.xapian.WritableDatabase(
            self.path, self.xapian.DB_CREATE | self.xapian.DB_NO_SYNC)
        generator = self.xapian.TermGenerator()
        for name, text in texts:
            document = self.xapian.Document()
            generator.set_document(document)
            generator.index_text(text)
            document.set_data(name)
            db.add_document(document)
        db.commit()
        db.close()

    def start(self):
        self.db = self.xapian.Database(self.path)

    def query(self, kind, first, second):
        query = self.xapian.Query
        if kind == "word":
            return query(first)
        if kind.startswith("near"):
            return query(query.OP_NEAR, [query(first), query(second)], int(kind[4:]) + 1)
        joins = {"and": query.OP_AND, "or": query.OP_OR, "andnot": query.OP_AND_NOT}
        return query(joins[kind], query(first), query(second))

    def ask(self, query):
        enquire = self.xapian.Enquire(self.db)
        enquire.set_query(query)
        return None, [match.document.get_data().decode() for match in enquire.get_mset(0, BEST)]


ENGINES = {"Kestan, Python": Kestan, "SQLite FTS5": Sqlite, "Xapian": Xapian}


def measure(name, options, folder):
    """Measures an engine of Python in this process, and prints what came out as JSON."""
    texts = read_texts(f"{options.corpus}/{options.form}", options.documents)
    engine = ENGINES[name](folder, options.threads)
    wall, processor = time.perf_counter(), time.process_time()
    engine.index(texts)
    seconds = time.perf_counter() - wall, time.process_time() - processor
    del texts
    engine.start()
    answers = []
    for query in read_queries(f"{options.corpus}/queries"):
        asked, took = engine.query(*query), []
        for _ in range(TIMES):
            start = time.perf_counter_ns()
            answer = engine.ask(asked)
            took.append((time.perf_counter_ns() - start) / 1000)
        answers.append((min(took), *answer))
    json.dump({"seconds": seconds, "answers": answers}, sys.stdout)


def run_python(name, folder):
    done = subprocess.run([sys.executable, *sys.argv, "--engine", name, "--folder", folder],
                          stdout=subprocess.PIPE, check=True)
    return json.loads(done.stdout)


def run_host(options, folder):
    """Measures Kestan through C++, which gets the same queries."""
    queries = pathlib.Path(folder, "queries")
    queries.write_text("".join(Kestan.query(*query) + "\n"
                               for query in read_queries(f"{options.corpus}/queries")))
    done = subprocess.run(
        [options.host, f"{options.corpus}/{options.form}", str(options.documents), queries,
         folder + "/host", str(options.threads)], stdout=subprocess.PIPE, check=True, text=True)
    first, *lines = done.stdout.splitlines()
    rows = [line.split("\t") for line in lines]
    return {"seconds": [float(number) for number in first.split("\t")],
            "answers": [[float(took), int(total), names] for took, total, *names in rows]}


def run_round(options):
    """Measures all engines once."""
    round_of = {}
    for name in ["Kestan, C++", *ENGINES]:
        folder = tempfile.mkdtemp(dir=options.work)
        try:
            round_of[name] = (run_python(name, folder) if name in ENGINES
                              else run_host(options, folder))
        finally:
            shutil.rmtree(folder)
        print(name, round_of[name]["seconds"], file=sys.stderr)
    python, host = round_of["Kestan, Python"]["answers"], round_of["Kestan, C++"]["answers"]
    if [answer[1:] for answer in python] != [answer[1:] for answer in host]:
        sys.exit("Kestan's answers through Python are not those through C++")
    return round_of


def table_of(rounds, queries, clock):
    """Returns, by engine, the seconds of indexing and the mean microseconds of each kind."""
    table = {}
    for name in rounds[0]:
        seconds = statistics.median(one[name]["seconds"][clock] for one in rounds)
        took = [statistics.median(answers) for answers in
                zip(*([answer[0] for answer in one[name]["answers"]] for one in rounds))]
        table[name] = [seconds, *(statistics.mean(
            us for us, query in zip(took, queries) if query[0] == kind) for kind in KINDS)]
    return table


def print_table(table, documents):
    print(f"{documents} documents; microseconds of a query on average\n")
    print("| | indexing, s |" + "".join(f" {kind} |" for kind in KINDS))
    print("|---|" + "--:|" * (1 + len(KINDS)))
    for name, (seconds, *took) in table.items():
        print(f"| {name} | {seconds:.2f} |" + "".join(f" {us:.1f} |" for us in took))


def failures(table):
    """Returns what is not as the top of this file says."""
    host, python = table["Kestan, C++"], table["Kestan, Python"]
    if python[0] > 1.4 * host[0]:
        yield f"indexing takes {python[0] / host[0]:.2f} times as long as in C++"
    for kind, ours, theirs in zip(KINDS, python[1:], host[1:]):
        if ours > 1.2 * theirs + 30:
            yield f"{kind} takes {ours:.1f} us, and {theirs:.1f} us in C++"
    for name in ENGINES:
        for kind, ours, theirs in zip(("indexing", *KINDS), python, table[name]):
            if ours > theirs:
                yield f"{name} is ahead in {kind}: {theirs:.1f}, and we take {ours:.1f}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--host", required=True, help="the program python_host")
    parser.add_argument("--corpus", required=True, help="the folder that compare.sh has made")
    parser.add_argument("--form", default="as-is", choices=("words", "as-is"))
    parser.add_argument("--documents", type=int, default=65535)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--threads", type=int, default=1, help="of Kestan; 0: its default")
    parser.add_argument("--clock", default="wall", choices=("wall", "cpu"), help="of indexing")
    parser.add_argument("--work", default=tempfile.gettempdir(), help="where indexes are made")
    parser.add_argument("--engine", help=argparse.SUPPRESS)
    parser.add_argument("--folder", help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.engine:
        return measure(options.engine, options, options.folder)
    os.makedirs(options.work, exist_ok=True)
    rounds = [run_round(options) for _ in range(options.rounds)]
    queries = read_queries(f"{options.corpus}/queries")
    table = table_of(rounds, queries, ("wall", "cpu").index(options.clock))
    print_table(table, options.documents)
    wrong = list(failures(table))
    for line in wrong:
        print(line, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
