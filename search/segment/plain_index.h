// SPDX-License-Identifier: GPL-3.0-or-later
// An index file that nothing is beside: one that class Kestan has made.
#ifndef KESTAN_SEARCH_SEGMENT_PLAIN_INDEX_H_
#define KESTAN_SEARCH_SEGMENT_PLAIN_INDEX_H_

#include <kestan/index_file.h>
#include <kestan/search/status.h>

#include <memory>
#include <string>
#include <string_view>

#include "search/segment/edits.h"

namespace kestan::search {

// What a segment has beside its index file, made of the index file alone.
//
// The codes of such a file may have holes, and posting records may be out of order. So the table
// has a row for each code that was ever handed out; those without a living document are removed in
// `edits`. So is a document whose name another one was renamed to, which cannot be found any more.
//
// How many words a document has, no record says. It is taken for the larger one of two numbers, of
// which neither is too large: its highest position; and how many positions it has in the postings
// of words that have no capitals, for of a word with capitals there are two forms, of one without,
// one. Without positions it is the number of distinct words without capitals.
//
// Words such as "t-shirt", whose keys look like those of other records, are left out, as
// IndexReader::ForEachWord() of the engine does. As in the engine, words of one byte may still have
// postings of a removed document where its code was used again.
struct PlainIndex {
  std::unique_ptr<IndexFile> file;  // open: nobody else can change it
  bool with_positions = true;
  std::string terms;  // a term dictionary without places
  std::string table;  // a document table without places
  Edits edits{0};
};

// Opens the index file at `path` and reads all of it.
//   Returns  kBusy while another process changes it; kDamaged, kVersion, kSystem.
Result<PlainIndex> ReadPlainIndex(const std::string& path);

// Reads what ConvertIndexFile() makes a property of: the word list of "wordlist:NAME", each word
// followed by a line feed, or the host's own flags as "option-flags"; "" if `file` has none.
// file.FileError() says whether it could be read.
std::string PropertyOf(IndexFile& file, std::string_view key);

// Returns whether `word` is as it is folded: of two forms of a word in a text, this is one.
bool IsFolded(std::string_view word);

// Returns the posting record of `postings`, in order of codes, each once.
std::string OrderedRecord(const WordPostings& postings);

// Returns the error of opening or reading the index file `file` as one of this library;
// `error_number` is errno.
Status StatusOfIndexFile(StoreError error, int error_number, const std::string& file);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_PLAIN_INDEX_H_
