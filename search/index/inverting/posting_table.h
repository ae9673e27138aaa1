// SPDX-License-Identifier: GPL-3.0-or-later
// The posting records of a segment while they grow.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_POSTING_TABLE_H_
#define KESTAN_SEARCH_INDEX_INVERTING_POSTING_TABLE_H_

#include <kestan/postings.h>
#include <kestan/tokenizer.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "search/index/inverting/arena.h"

namespace kestan::search {

// A hash table of terms, each with its posting record in chunks, which are the larger the longer
// the record is. All lies in an arena: no term has memory of its own. One thread at a time.
class PostingTable {
 public:
  using TermAddress = Arena::Address;

  explicit PostingTable(bool with_positions);

  // Appends the posting of a document to the record of each of its words. Copies them.
  void Add(Code code, const Tokenizer& words);

  std::size_t terms() const { return terms_; }

  // Returns how many bytes the table takes, free room included.
  std::size_t memory() const;

  // Returns all terms in order of their bytes.
  std::vector<TermAddress> SortedTerms() const;

  // Returns the term at `address`; lent until the next call of Add().
  std::string_view TermAt(TermAddress address) const;

  // Returns how many documents hold the term.
  std::uint32_t DocumentsOf(TermAddress address) const;

  // Replaces `*record` by the posting record of the term.
  void CopyRecord(TermAddress address, std::string* record) const;

 private:
  struct Term;
  struct Chunk;

  // Where a term is, by its hash. 0: nowhere.
  struct Slot {
    std::uint32_t hash = 0;
    TermAddress term = 0;
  };

  void AddGroup(Code code, const Tokenizer::Word* words, std::size_t count);
  TermAddress FindOrAdd(const Tokenizer::Word& word);
  TermAddress NewTerm(std::string_view word);
  void GrowFor(std::size_t terms);
  void AppendPosting(Code code, const Positions& positions, Term* term);
  void Append(const char* bytes, std::size_t size, Term* term);
  void AddChunk(std::size_t bytes, Term* term);
  Term* At(TermAddress address) const;

  const bool with_positions_;
  Arena arena_;
  std::vector<Slot> slots_;  // their number is a power of two
  std::size_t terms_ = 0;
  std::string posting_;  // the posting that is appended, where it does not fit into a chunk
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_POSTING_TABLE_H_
