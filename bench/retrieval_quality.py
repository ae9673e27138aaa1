#!/usr/bin/env python3
"""How good are the answers to questions in plain words?

Indexes a test collection with the real command, asks its questions, and compares the order of the
answers with what people judged to be relevant. Prints, for each collection and each way to ask,

  MAP    the mean over the questions of the average precision: the mean, over the relevant documents,
         of the share of relevant ones down to there; those that are not found count 0
  P@10   how many of the first ten answers are relevant, on average
  ms     the time of one command, from its start to its end

and ends with an error if any search fails. Questions without relevant documents are left out. With
--host, also asks the search library through quality_host, which is built with the other workloads:
with its default settings, and the questions as they stand. Its ms are those of one search, without
the start of a program.

A collection is a folder with three files of lines, parted by tabs: docs.tsv (name, text),
queries.tsv (number, question) and qrels.tsv (number, name, grade; below 1 is not relevant).

Example: bench/retrieval_quality.py build/release/cli/kestan \\
             --host build/release/bench/quality_host COLLECTION...
"""

import argparse
import collections
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

KEPT = 1000  # answers looked at; what comes after them hardly counts


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


def line_for(collection, way, judged, seconds):
    """Returns a line of the table. `judged` holds a pair for each question: answers, relevant."""
    average = mean([average_precision(*pair) for pair in judged])
    first_ten = mean([precision_at_10(*pair) for pair in judged])
    return (f"{collection.name:10}  {way:42}  {average:.4f}  {first_ten:.4f}  "
            f"{1000 * mean(seconds):5.1f}")


def measure(kestan, collection, folder):
    """Yields a line for each way to ask the command."""
    questions = read_lines(collection / "queries.tsv")
    relevant = read_judgements(collection / "qrels.tsv")
    make_index(kestan, read_lines(collection / "docs.tsv"), folder)
    asked = [(number, text) for number, text in questions if relevant[number]]
    for way, arguments_of in WAYS.items():
        answers = [ask(kestan, folder, arguments_of(text)) for _, text in asked]
        judged = [(names, relevant[number]) for (names, _), (number, _) in zip(answers, asked)]
        yield line_for(collection, way, judged, [seconds for _, seconds in answers])


def measure_host(host, collection, folder):
    """Returns the line for the search library."""
    relevant = read_judgements(collection / "qrels.tsv")
    done = subprocess.run([host, collection, folder / "host.index"], check=True,
                          stdout=subprocess.PIPE)
    lines = [line.split("\t") for line in done.stdout.decode().splitlines()]
    judged = [(names, relevant[number]) for number, _, *names in lines if relevant[number]]
    seconds = [int(microseconds) / 1e6 for number, microseconds, *_ in lines if relevant[number]]
    return line_for(collection, "search library, default settings", judged, seconds)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kestan", help="the command")
    parser.add_argument("--host", help="the program that asks the search library")
    parser.add_argument("collections", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    kestan = os.path.abspath(options.kestan)
    print(f"{'collection':10}  {'asked':42}  {'MAP':6}  {'P@10':6}  {'ms':>5}")
    for collection in options.collections:
        with tempfile.TemporaryDirectory() as scratch:
            folder = pathlib.Path(scratch) / "documents"
            folder.mkdir()
            for line in measure(kestan, collection, folder):
                print(line, flush=True)
            if options.host:
                host = os.path.abspath(options.host)
                print(measure_host(host, collection, pathlib.Path(scratch)), flush=True)


if __name__ == "__main__":
    main()
