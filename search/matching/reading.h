// SPDX-License-Identifier: GPL-3.0-or-later
// The ways to read a query in a snapshot.
#ifndef KESTAN_SEARCH_MATCHING_READING_H_
#define KESTAN_SEARCH_MATCHING_READING_H_

#include <kestan/search/index_reader.h>
#include <kestan/search/status.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "search/query/optional_words.h"
#include "search/query/query_parser.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

// In an index of fewer documents no word is common: too little is known of its language.
constexpr std::uint64_t kMinDocumentsOfCommonWords = 100;

// Returns the query that every document matches.
Query AllDocuments();

// Returns how words side by side are read first.
DefaultOperator OperatorOf(WordsMean words);

// Reads one query. With WordsMean::kBest, words that stand in more than half of the living
// documents are optional: they say as little as stop words do, in any language, and yet rank. One
// thread at a time.
class Reading {
 public:
  // Borrows the text and the snapshot. With a filter among the options, a blank text stands for all
  // documents.
  Reading(std::string_view text, const Snapshot& snapshot, const SearchOptions& options)
      : text_(text),
        snapshot_(snapshot),
        words_(options.words),
        is_strict_(options.strict),
        finds_all_(options.filter != nullptr && IsBlank(text)) {}

  // A query that was built by calls, which is read in one way. Borrows the snapshot.
  Reading(Query built, const Snapshot& snapshot, const SearchOptions& options)
      : snapshot_(snapshot), words_(options.words), built_(std::move(built)) {}

  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

  // Returns the first mistake of a text, if those are not wanted; else success.
  //   Throws   as ParseQuery().
  Status Check() const;

  // "" for a query that was built by calls.
  std::string_view text() const { return text_; }

  // Returns the query as words side by side mean; nothing if it holds nothing to search for.
  std::optional<Query> AsAsked();

  // Returns whether documents that hold some of the words may answer too.
  bool MayBeForSome() const { return words_ == WordsMean::kBest && !built_; }

  // Returns the query for them, if they may; as AsAsked() does.
  std::optional<Query> ForSome();

  // Returns whether it is a question in plain words.
  bool IsQuestion() const;

  // Returns which words the query that was returned last does not require.
  const OptionalWords& optional_words() const { return optional_; }

  // The first error; kDamaged. After one, words may be taken for less common than they are.
  const Status& status() const { return status_; }

 private:
  static bool IsBlank(std::string_view text);
  std::optional<Query> Parsed(DefaultOperator default_operator);
  IsCommonWord CommonWords() const;
  bool IsCommon(const std::string& word) const;

  const std::string_view text_;
  const Snapshot& snapshot_;
  const WordsMean words_;
  const bool is_strict_ = false;
  const bool finds_all_ = false;
  const std::optional<Query> built_;
  OptionalWords optional_;
  mutable std::map<std::string, bool, std::less<>> is_common_;  // of words that were looked up
  mutable Status status_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_READING_H_
