// SPDX-License-Identifier: GPL-3.0-or-later
// From text to the words that are indexed: kestan::search::Analyzer.
#ifndef KESTAN_SEARCH_ANALYZER_H_
#define KESTAN_SEARCH_ANALYZER_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// A word of a text, lent for the call that gives it.
struct AnalyzedWord {
  std::string_view word;  // as it is stored: Analyzer::Decode() makes UTF-8 of it
  std::size_t start = 0;  // the bytes of the text that it was made of: from `start` up to,
  std::size_t end = 0;    // not including, `end`. Those of neighbours may overlap
};

// Words of a query that hang together, such as those of "covid-19": each is to follow the one
// before.
struct WordGroup {
  std::vector<std::string> words;  // as they are stored; at least one
  bool last_is_prefix = false;     // the last one stands for all words that begin with it
  std::size_t end = 0;             // where the text of the group ends, in bytes
};

// Finds the words of documents and of queries, both in the same way: runs of letters and digits,
// without capitals and, in Latin, Greek and Cyrillic, without accents; in scripts without blanks,
// pairs of characters or words of a dictionary. docs/indexing.md has the rules.
//
// It reads UTF-8; bytes that are none are taken as Latin-1. Text in ASCII needs no ICU and no
// memory but that of the result. Any number of threads may share one object.
class KESTAN_SEARCH_EXPORT Analyzer {
 public:
  // The version of the rules. Words of another version may not be compared with these.
  static constexpr std::string_view kVersion = "1";

  // No word has more characters; longer ones are cut.
  static constexpr std::size_t kMaxCharacters = 64;

  // Returns the words of `utf8` in order, as they are stored, each followed by a blank: what class
  // Kestan, given this text, indexes as it stands.
  //   Returns  kSystem if ICU cannot be loaded or lacks data; kOutOfMemory.
  Result<std::string> Analyze(std::string_view utf8) const;

  // Calls `visit` with each word of `utf8` and where it stands, until it returns false. What
  // `visit` throws is an error of kSystem.
  //   Returns  as Analyze() does.
  Status ForEachWord(std::string_view utf8,
                     const std::function<bool(const AnalyzedWord&)>& visit) const;

  // Returns the words of a query, without operators, in groups that hang together. What stands
  // between two words of a group is punctuation that joins (e-mail, a.b@example.org), or nothing.
  // Of Chinese and Japanese, a single character stands for the words that begin with it.
  //   Returns  as Analyze() does.
  Result<std::vector<WordGroup>> AnalyzeQuery(std::string_view utf8) const;

  // Returns `text` with the words in it in UTF-8, for people. Whatever else it holds stays.
  //   Returns  kOutOfMemory.
  static Result<std::string> Decode(std::string_view text);
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_ANALYZER_H_
