#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""How good are the answers to questions in plain words?

Indexes a test collection with the real command, asks its questions, and compares the order of the
answers with what people judged to be relevant. Prints, for each collection and each way to ask,

  MAP    the mean over the questions of the average precision: the mean, over the relevant documents,
         of the share of relevant ones down to there; those that are not found count 0
  P@10   how many of the first ten answers are relevant, on average
  ms     the time of one command, from its start to its end

  MRR    of the known-item test: the reciprocal rank of the one document that is looked for, on
         average; 1 if each is the first answer

and ends with an error if any search fails. Questions without relevant documents are left out. With
--host, also asks the search library through quality_host, which is built with the other workloads:
with its default settings, and the questions as they stand. Its ms are those of one search, without
the start of a program. With --peers, also asks SQLite FTS5 (porter stemmer, words joined with OR,
ordered by bm25) and, through xapian_quality_host beside quality_host, Xapian (English stemmer, stop
words left out).

The known-item test asks for documents by their titles, 200 of them, spread evenly: of a collection
whose texts begin with a title that " . " ends, or else that has titles as a third field. --untitled
takes the titles out of the texts first, so that only what a text says about its title's subject
leads to it.

A collection is a folder with three files of lines, parted by tabs: docs.tsv (name, text and, if
there is one, title), queries.tsv (number, question) and qrels.tsv (number, name, grade; below 1 is not relevant).

Example: bench/retrieval_quality.py build/release/cli/kestan \\
             --host build/release/bench/quality_host --peers COLLECTION...
"""

import argparse
import collections
import os
import pathlib
import re
import sqlite3
import subprocess
import sys
import tempfile
import time

KEPT = 1000  # answers looked at; what comes after them hardly counts
KNOWN_ITEMS = 200
TITLE_END = " . "
KNOWN = "titles of "  # what the name of a known-item test begins with


def read_lines(path):
    with open(path, encoding="utf-8", errors="replace") as lines:
        return [line.rstrip("\n").split("\t") for line in lines]


def read_judgements(path):
    relevant = collections.defaultdict(set)
    for query, name, grade in read_lines(path):
        if int(grade) >= 1:
            relevant[query].add(name)
    return relevant


def joined_with_or(question):
    """Lower case, or OR would not be between operands and capitals would be exact."""
    return [" OR ".join(re.findall("[a-z]+", question.lower()))]


WAYS = {
    "as it stands": lambda question: [question],
    "as it stands, --any": lambda question: ["--any", question],
    "words joined with OR": joined_with_or,
}


def make_index(kestan, documents, folder):
    """One file a document; texts stay on one line, as they are."""
    for name, text in documents:
        (folder / name).write_text(text + "\n", encoding="utf-8")
    subprocess.run([kestan, "index", "../collection.index", "."], cwd=folder, check=True,
                   stdout=subprocess.DEVNULL)


def ask(kestan, folder, arguments):
    """Returns the names of the answers, in order, and the seconds it took."""
    command = [kestan, "search", "../collection.index", "-l", "--limit", str(KEPT)]
    start = time.perf_counter()
    done = subprocess.run(command + arguments, cwd=folder, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL)
    seconds = time.perf_counter() - start
    if done.returncode not in (0, 1):
        sys.exit(f"retrieval_quality: {command + arguments} ended with {done.returncode}")
    return done.stdout.decode().splitlines(), seconds


def average_precision(answers, relevant):
    found = 0
    total = 0.0
    for rank, name in enumerate(answers, 1):
        if name in relevant:
            found += 1
            total += found / rank
    return total / len(relevant)


def precision_at_10(answers, relevant):
    return sum(name in relevant for name in answers[:10]) / 10


def mean(numbers):
    return sum(numbers) / len(numbers)


def reciprocal_rank(answers, relevant):
    return max((1 / rank for rank, name in enumerate(answers, 1) if name in relevant), default=0)


def line_for(collection, way, judged, seconds):
    """Returns a line of the table. `judged` holds a pair for each question: answers, relevant."""
    if collection.name.startswith(KNOWN):
        figures = f"{'':6}  {'':6}  {mean([reciprocal_rank(*pair) for pair in judged]):.4f}"
    else:
        average = mean([average_precision(*pair) for pair in judged])
        figures = f"{average:.4f}  {mean([precision_at_10(*pair) for pair in judged]):.4f}  {'':6}"
    return f"{collection.name:20}  {way:42}  {figures}  {1000 * mean(seconds):5.1f}"


def measure(kestan, collection, folder):
    """Yields a line for each way to ask the command."""
    questions = read_lines(collection / "queries.tsv")
    relevant = read_judgements(collection / "qrels.tsv")
    make_index(kestan, [fields[:2] for fields in read_lines(collection / "docs.tsv")], folder)
    asked = [(number, text) for number, text in questions if relevant[number]]
    for way, arguments_of in WAYS.items():
        answers = [ask(kestan, folder, arguments_of(text)) for _, text in asked]
        judged = [(names, relevant[number]) for (names, _), (number, _) in zip(answers, asked)]
        yield line_for(collection, way, judged, [seconds for _, seconds in answers])


def measure_host(way, host, collection, index):
    """Returns the line for a program that answers the questions of a collection."""
    relevant = read_judgements(collection / "qrels.tsv")
    done = subprocess.run([host, collection, index], check=True, stdout=subprocess.PIPE)
    lines = [line.split("\t") for line in done.stdout.decode().splitlines()]
    judged = [(names, relevant[number]) for number, _, *names in lines if relevant[number]]
    seconds = [int(microseconds) / 1e6 for number, microseconds, *_ in lines if relevant[number]]
    return line_for(collection, way, judged, seconds)


def measure_fts5(collection):
    """Returns the line for SQLite FTS5. Its quotes keep words from being operators."""
    connection = sqlite3.connect(":memory:")
    connection.execute("CREATE VIRTUAL TABLE texts USING fts5"
                       "(name UNINDEXED, text, tokenize = 'porter unicode61')")
    connection.executemany("INSERT INTO texts VALUES (?, ?)",
                           [fields[:2] for fields in read_lines(collection / "docs.tsv")])
    relevant = read_judgements(collection / "qrels.tsv")
    judged = []
    seconds = []
    for number, text in read_lines(collection / "queries.tsv"):
        if not relevant[number]:
            continue
        words = " OR ".join(f'"{word}"' for word in re.findall(r"\w+", text))
        start = time.perf_counter()
        found = connection.execute("SELECT name FROM texts WHERE texts MATCH ? ORDER BY bm25(texts)"
                                   " LIMIT ?", (words, KEPT)).fetchall()
        seconds.append(time.perf_counter() - start)
        judged.append(([name for name, in found], relevant[number]))
    return line_for(collection, f"SQLite {sqlite3.sqlite_version} FTS5, porter, bm25", judged, seconds)


def title_of(fields):
    """Returns the title of a document; "" if it has none or nothing else."""
    title, end, rest = fields[1].partition(TITLE_END)
    if end and rest.strip():
        return title.strip()
    return fields[2].strip() if len(fields) > 2 else ""


def untitled(fields):
    return [fields[0], fields[1].partition(TITLE_END)[2]] if len(fields) == 2 else fields[:2]


def make_known_items(collection, folder, drops_titles):
    """Writes the known-item test of a collection into `folder`; returns False if it has no titles."""
    documents = read_lines(collection / "docs.tsv")
    titled = [fields for fields in documents if title_of(fields)]
    if len(titled) < KNOWN_ITEMS:
        return False
    step = len(titled) // KNOWN_ITEMS
    chosen = titled[::step][:KNOWN_ITEMS]
    kept = [untitled(fields) if drops_titles and title_of(fields) else fields
            for fields in documents]
    tables = {"docs.tsv": kept,
              "queries.tsv": [[fields[0], title_of(fields)] for fields in chosen],
              "qrels.tsv": [[fields[0], fields[0], "1"] for fields in chosen]}
    folder.mkdir()
    for name, lines in tables.items():
        text = "".join("\t".join(line) + "\n" for line in lines)
        (folder / name).write_text(text, encoding="utf-8")
    return True


def print_all(options, collection, scratch):
    """Prints a line for each program and way to ask."""
    folder = scratch / "documents"
    folder.mkdir(parents=True)
    for line in measure(os.path.abspath(options.kestan), collection, folder):
        print(line, flush=True)
    if options.host:
        host = os.path.abspath(options.host)
        print(measure_host("search library, default settings", host, collection,
                           scratch / "host.index"), flush=True)
    if options.peers:
        print(measure_fts5(collection), flush=True)
        if options.host:
            xapian = os.path.join(os.path.dirname(host), "xapian_quality_host")
            print(measure_host("Xapian, English stemmer, stop words", xapian, collection,
                               scratch / "xapian"), flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kestan", help="the command")
    parser.add_argument("--host", help="the program that asks the search library")
    parser.add_argument("--peers", action="store_true", help="ask other engines too")
    parser.add_argument("--untitled", action="store_true",
                        help="take the titles of known items out of the texts")
    parser.add_argument("collections", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    print(f"{'collection':20}  {'asked':42}  {'MAP':6}  {'P@10':6}  {'MRR':6}  {'ms':>5}")
    for collection in options.collections:
        with tempfile.TemporaryDirectory() as scratch:
            scratch = pathlib.Path(scratch)
            print_all(options, collection, scratch / "judged")
            known = scratch / (KNOWN + collection.name)
            if make_known_items(collection, known, options.untitled):
                print_all(options, known, scratch / "known")


if __name__ == "__main__":
    main()
