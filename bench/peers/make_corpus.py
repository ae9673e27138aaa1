#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the corpus of the peer comparison from unpacked Debian documentation packages.

  make_corpus.py TREE OUT [--documents N]

TREE holds one folder per package. Their texts are cut into documents of 150 to 250 words, no two
of them alike, and N of them (default 65535) are written to OUT twice, in the same order:

  words   letters only, in lower case, one blank between two words
  as-is   the same documents with their capitals, digits, punctuation and line breaks

Each document is a line "NAME BYTES", that many bytes, and a line feed. The same packages always
give the same bytes, and a smaller N gives the first N documents of the larger one.
"""

import argparse
import gzip
import hashlib
import html
import pathlib
import re
import sys

# What to take of each package: one form only where it carries a text in several.
ENDINGS = {
    "bible-kjv-text": (".txt",),
    "linux-doc-6.1": (".html", ".txt", ".yaml"),
    "manpages": tuple(f".{section}" for section in "123456789"),
    "manpages-dev": tuple(f".{section}" for section in "123456789"),
    "perl-doc": (".1", ".3perl"),
}
HTML_ONLY = (".html",)
SKIPPED_FOLDERS = {"_sources", "_static"}
NAVIGATION_FILES = 10  # a line found in so many files of a package is a menu, not text
FEWEST_WORDS, MOST_WORDS = 150, 250

WORD = re.compile(r"[A-Za-z]+(?:'[A-Za-z]+)*")
HTML_NOISE = re.compile(r"<(script|style|head)\b.*?</\1\s*>|<!--.*?-->", re.S | re.I)
HTML_BREAK = re.compile(
    r"</?(?:p|div|li|h\d|tr|dt|dd|pre|br|table|ul|ol|section|nav)\b[^>]*>", re.I)
HTML_TAG = re.compile(r"<[^>]*>")
MAN_DEFINITION = re.compile(r"^\.de.*?^\.\.$", re.S | re.M)
MAN_LOGIC = re.compile(r"^[.'](?:if|ie|el|ds|tr|nr|rr|\\\"|\s|\{|\}|IX|TH|so|nh|ad).*$|^'.*$", re.M)
MAN_MACRO = re.compile(r"^\.\s*[A-Za-z]+\s*", re.M)
MAN_ESCAPE = re.compile(r"\\(?:f(?:\(..|\[[^]]*\]|.)|s[-+]?\d|\*?\(..|\[[^]]*\]|[&|^%/,:])")


def plain_text(ending, text):
    """Takes the markup out of `text`, keeping its lines."""
    if ending == ".html":
        text = HTML_NOISE.sub(" ", text)
        text = HTML_TAG.sub("", HTML_BREAK.sub("\n", text))
        return html.unescape(text)
    if ending[1:2].isdigit():
        text = MAN_LOGIC.sub("", MAN_DEFINITION.sub("", text))
        return MAN_ESCAPE.sub("", MAN_MACRO.sub("", text)).replace("\\-", "-").replace('"', "")
    return text


def texts_of(package):
    """Yields the path below `package` and the text of each of its documents, in order of paths."""
    endings = ENDINGS.get(package.name, HTML_ONLY)
    for path in sorted(package.rglob("*")):
        below = path.relative_to(package)
        if path.is_symlink() or not path.is_file() or SKIPPED_FOLDERS & set(below.parts):
            continue
        unpacked = pathlib.Path(str(below)[:-3] if below.suffix == ".gz" else below)
        if unpacked.suffix not in endings:
            continue
        data = path.read_bytes()
        data = gzip.decompress(data) if below.suffix == ".gz" else data
        yield unpacked, plain_text(unpacked.suffix, data.decode("utf-8", "replace"))


def without_navigation(texts):
    """Drops the lines that many of the texts share."""
    files_with = {}
    for _, text in texts:
        for line in {line.strip() for line in text.split("\n")}:
            files_with[line] = files_with.get(line, 0) + 1
    for path, text in texts:
        kept = [l for l in text.split("\n") if files_with[l.strip()] < NAVIGATION_FILES]
        yield path, "\n".join(kept)


def digest(text):
    return hashlib.sha256(text.encode("utf-8", "replace")).digest()


def short_name(package, path):
    parts = [part for part in path.parts if part not in ("usr", "share", "doc", "man", package)]
    return "/".join([package, *parts]).replace(" ", "_")


def pieces(name, text):
    """Cuts `text` where it has had enough words; what is left at the end is too short to keep."""
    words = list(WORD.finditer(text))
    first = number = 0
    while True:
        piece_name = f"{name}#{number}"
        size = FEWEST_WORDS + digest(piece_name)[0] % (MOST_WORDS - FEWEST_WORDS + 1)
        if first + size > len(words):
            return
        end = words[first + size].start() if first + size < len(words) else len(text)
        yield piece_name, text[words[first].start():end].strip()
        first += size
        number += 1


def words_only(text):
    return " ".join(word.replace("'", "").lower() for word in WORD.findall(text))


def all_documents(tree):
    """Returns (order, name, text, words) of every document; `order` mixes the packages."""
    seen = set()
    documents = []
    for package in sorted(path for path in tree.iterdir() if path.is_dir()):
        before = len(documents)
        for path, text in without_navigation(list(texts_of(package))):
            for name, piece in pieces(short_name(package.name, path), text):
                words = words_only(piece)
                fingerprint = digest(words)
                if fingerprint not in seen:
                    seen.add(fingerprint)
                    documents.append((digest(name), name, piece, words))
        print(f"{package.name}: {len(documents) - before} documents", file=sys.stderr)
    return documents


def write(path, documents):
    checksum = hashlib.sha256()
    with open(path, "wb") as out:
        for name, text in documents:
            data = text.encode("utf-8", "replace")
            block = b"%s %d\n%s\n" % (name.encode(), len(data), data)
            checksum.update(block)
            out.write(block)
    size = path.stat().st_size
    print(f"{path.name}: {size / 1e6:.1f} MB, sha256 {checksum.hexdigest()[:16]}", file=sys.stderr)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("tree", type=pathlib.Path)
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("--documents", type=int, default=65535)
    arguments = parser.parse_args()
    documents = sorted(all_documents(arguments.tree))
    if len(documents) < arguments.documents:
        sys.exit(f"only {len(documents)} documents, {arguments.documents} are needed")
    documents = documents[:arguments.documents]
    arguments.out.mkdir(parents=True, exist_ok=True)
    write(arguments.out / "words", [(name, words) for _, name, _, words in documents])
    write(arguments.out / "as-is", [(name, text) for _, name, text, _ in documents])


if __name__ == "__main__":
    main()
