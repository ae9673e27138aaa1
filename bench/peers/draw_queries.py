#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the queries of the peer comparison from the words of the corpus.

  draw_queries.py WORDS OUT

Writes a line "KIND<TAB>FIRST<TAB>SECOND" for each query: 66 common words, and 200 each of and,
near1, near10, or, andnot. Words fall into four classes by the number of documents that hold them,
each class spanning the same ratio, and each pair of classes gets the same number of queries. The
words of and, near1 and near10 stand that close in at least one document, so that no answer is
empty. The same words always give the same queries.
"""

import collections
import itertools
import random
import sys

COMMON_WORDS = 66
QUERIES_PER_KIND = 200
FEWEST_DOCUMENTS = 5
CLASSES = range(4)  # rare, uncommon, frequent, common
CLASS_PAIRS = list(itertools.combinations_with_replacement(CLASSES, 2))


def read_documents(path):
    documents = []
    with open(path, "rb") as words:
        while header := words.readline():
            documents.append(words.read(int(header.split()[1])).decode().split(" "))
            words.readline()
    return documents


def count_documents(documents):
    counts = collections.Counter()
    for words in documents:
        counts.update(set(words))
    return counts


def words_by_class(counts, documents):
    """Returns the words of each class in order of the alphabet, and the class of each word."""
    ratio = (documents / FEWEST_DOCUMENTS) ** (1 / len(CLASSES))
    limits = [FEWEST_DOCUMENTS * ratio ** number for number in CLASSES[1:]]
    classes = [[] for _ in CLASSES]
    class_of = {}
    for word in sorted(counts):
        if counts[word] >= FEWEST_DOCUMENTS:
            class_of[word] = sum(counts[word] >= limit for limit in limits)
            classes[class_of[word]].append(word)
    return classes, class_of


def common_words(counts):
    """Returns every second of the most common words."""
    ranked = sorted(counts, key=lambda word: (-counts[word], word))
    return ranked[: 2 * COMMON_WORDS : 2]


def shuffled_order(first, second, chance):
    return (first, second) if chance.randrange(2) else (second, first)


def any_pairs(classes, chance):
    """Yields pairs of words, each pair of classes as often as any other."""
    for low, high in itertools.cycle(CLASS_PAIRS):
        first = classes[low][chance.randrange(len(classes[low]))]
        second = classes[high][chance.randrange(len(classes[high]))]
        if first != second:
            yield shuffled_order(first, second, chance)


def close_pairs(documents, class_of, chance, distance):
    """Yields pairs that stand at most `distance` words apart somewhere, as any_pairs does."""
    waiting = collections.defaultdict(collections.deque)
    for pair in itertools.cycle(CLASS_PAIRS):
        while not waiting[pair]:
            words = documents[chance.randrange(len(documents))]
            place = chance.randrange(len(words))
            other = min(place + 1 + chance.randrange(distance), len(words) - 1)
            first, second = words[place], words[other]
            if first != second and first in class_of and second in class_of:
                found = tuple(sorted((class_of[first], class_of[second])))
                waiting[found].append(shuffled_order(first, second, chance))
        yield waiting[pair].popleft()


def distinct(pairs, count):
    chosen = []
    for pair in pairs:
        if pair not in chosen:
            chosen.append(pair)
        if len(chosen) == count:
            return chosen


def main():
    documents = read_documents(sys.argv[1])
    counts = count_documents(documents)
    classes, class_of = words_by_class(counts, len(documents))
    queries = [("word", word, "") for word in common_words(counts)]
    sources = {
        "and": lambda chance: close_pairs(documents, class_of, chance, 200),
        "near1": lambda chance: close_pairs(documents, class_of, chance, 1),
        "near10": lambda chance: close_pairs(documents, class_of, chance, 10),
        "or": lambda chance: any_pairs(classes, chance),
        "andnot": lambda chance: any_pairs(classes, chance),
    }
    for kind, source in sources.items():
        for first, second in distinct(source(random.Random(kind)), QUERIES_PER_KIND):
            queries.append((kind, first, second))
    with open(sys.argv[2], "w", encoding="ascii") as out:
        out.writelines("\t".join(query) + "\n" for query in queries)
    print(f"{len(queries)} queries; words per class, rare first: {[len(c) for c in classes]}",
          file=sys.stderr)


if __name__ == "__main__":
    main()
