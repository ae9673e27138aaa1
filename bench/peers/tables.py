# SPDX-License-Identifier: GPL-3.0-or-later
"""Turns what compare.py measured into Markdown tables."""

import statistics

OURS = ("kestan", "kestan32", "kestan_search")
# Ours that are compared with the best peer, each in a column of its own.
COMPARED = {"kestan": "file", "kestan_search": "folder"}
TITLES = {"kestan": "Kestan, one file", "kestan32": "Kestan, one file, 32 bit",
          "kestan_search": "Kestan, folder", "fts5": "SQLite FTS5",
          "fts5_contentless": "FTS5 contentless", "xapian": "Xapian", "lucene": "Lucene++",
          "groonga": "Groonga"}
KINDS = {"word": "66 common words", "and": "200 AND", "near1": "200 NEAR/1",
         "near10": "200 NEAR/10", "or": "200 OR", "andnot": "200 AND NOT"}
FORM_TITLES = {"words": "lower-case words", "as-is": "text as it is"}
CLOCKS = {"wall": 0, "cpu": 1}
MEGABYTE = 1e6


class Table:
    """Rows of one number for each engine, the last columns our ratios to the best peer."""

    def __init__(self, engines, results, clock):
        self.engines = engines
        self.results = results
        self.clock = CLOCKS[clock]
        self.compared = [engine for engine in COMPARED if engine in engines]
        titles = [TITLES[engine] for engine in engines]
        titles += [f"{COMPARED[engine]} / best peer" for engine in self.compared]
        self.lines = ["| | " + " | ".join(titles) + " |", "|---|" + "---:|" * len(titles)]

    def median(self, engine, what, clock=None):
        """Returns the median of all rounds, or None if the engine has no such number."""
        values = self.results[engine].get(what)
        if not values:
            return None
        index = self.clock if clock is None else clock
        return statistics.median(v[index] if isinstance(v, list) else v for v in values)

    def row(self, name, value_of, compared=True):
        values = {engine: value_of(engine) for engine in self.engines}
        cells = ["" if value is None else number(value) for value in values.values()]
        cells += [ratio(engine, values) if compared else "" for engine in self.compared]
        self.lines.append(f"| {name} | " + " | ".join(cells) + " |")

    def medians(self, name, what, unit, clock=None, compared=True):
        def value_of(engine):
            found = self.median(engine, what, clock)
            return None if found is None else found / unit
        self.row(name, value_of, compared)


def number(value):
    if value >= 100:
        return f"{value:.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.3g}"


def ratio(engine, values):
    """Says how one of ours stands to the best peer, and who that is where it is ahead."""
    ours = values.get(engine)
    peers = {e: v for e, v in values.items() if e not in OURS and v is not None}
    if ours is None or not peers:
        return ""
    best = min(peers, key=peers.get)
    if peers[best] <= 0:
        return ""
    share = ours / peers[best]
    return f"{share:.2f}" if share <= 1 else f"**{share:.2f}**, behind {TITLES[best]}"


def indexing_rows(table):
    for name, what in (("index, one commit", "once"), ("index, commit every 1,000", "steps")):
        table.medians(f"{name} (s)", f"{what}.index", 1, CLOCKS["wall"])
        table.medians(f"{name} (s of CPU)", f"{what}.index", 1, CLOCKS["cpu"])
    table.medians("peak memory, one commit (MB)", "once.peak", MEGABYTE)
    table.medians("peak memory, commit every 1,000 (MB)", "steps.peak", MEGABYTE)
    table.medians("size, one commit (MB)", "once.size", MEGABYTE)
    table.medians("size, commit every 1,000 (MB)", "steps.size", MEGABYTE)
    table.medians("size, optimised (MB)", "optimised.size", MEGABYTE)
    table.medians("optimise (s)", "optimised.optimise", 1, compared=False)


def query_rows(table):
    for kind, name in KINDS.items():
        table.medians(f"{name} (ms)", f"warm.query.{kind}", 1e-3)

    def word_match(engine):
        return table.median(engine, "warm.query.word") * 1e9 / table.median(
            engine, "warm.matches.word")
    table.row("a common word (ns a match)", word_match)
    table.medians("peak memory (MB)", "warm.peak", MEGABYTE)


def cold_rows(table):
    for kind, name in KINDS.items():
        table.medians(f"cold, {name.split(' ', 1)[1]} (ms)", f"cold.{kind}.cold", 1e-3)


def agreement(engines, results):
    lines = []
    for engine in engines:
        queries, missing, extra = results[engine]["wrong"]
        if queries:
            lines.append(f"{TITLES[engine]} answers {queries} queries otherwise than a reading of "
                         f"all documents: {missing} documents missing, {extra} too many.")
    return lines or ["All engines list the same documents for every query as a reading of all "
                     "documents does."]


def own_size(engine, results):
    own = results[engine]
    payload = own["optimised.payload"][-1]
    shares = [statistics.median(own[what]) / payload
              for what in ("once.size", "steps.size", "optimised.size")]
    memory = statistics.median(own["once.peak"]) / statistics.median(own["once.size"])
    return (f"{TITLES[engine]}: {shares[0]:.2f} times the keys and values of its records "
            f"({payload / MEGABYTE:.1f} MB) after one commit, {shares[1]:.2f} times after a commit "
            f"every 1,000 documents, {shares[2]:.2f} times when optimised. Peak memory with one "
            f"commit: {memory:.2f} times the finished index.")


def section(report, form, clock):
    results, engines = report["forms"][form], report["engines"]
    lines = [f"## {report['documents']} documents, {FORM_TITLES[form]}, "
             f"{report['corpus_bytes'][form] / MEGABYTE:.0f} MB", ""]
    for title, rows in (("Indexing", indexing_rows), (f"Queries, warm ({clock} time)", query_rows),
                        (f"Queries, cold ({clock} time)", cold_rows)):
        table = Table(engines, results, clock)
        rows(table)
        lines += [f"### {title}", "", *table.lines, ""]
    matches = {kind: int(results[engines[0]][f"warm.matches.{kind}"][-1]) for kind in KINDS}
    lines.append("Documents listed: " + ", ".join(
        f"{name} {matches[kind]}" for kind, name in KINDS.items()) + ".")
    sizes = [own_size(engine, results) for engine in engines if engine in COMPARED]
    return lines + agreement(engines, results) + ["", *sizes, ""]


def markdown(report, clock):
    lines = [f"Machine: {report['machine']}.", "Packages: " + ", ".join(report["packages"]) + ".",
             ""]
    for form in report["forms"]:
        lines += section(report, form, clock)
    return "\n".join(lines)
