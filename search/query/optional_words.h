// SPDX-License-Identifier: GPL-3.0-or-later
// Words of a query that documents need not hold.
#ifndef KESTAN_SEARCH_QUERY_OPTIONAL_WORDS_H_
#define KESTAN_SEARCH_QUERY_OPTIONAL_WORDS_H_

#include <functional>
#include <string>
#include <vector>

#include "search/query/query.h"

namespace kestan::search {

// Returns whether `word`, as it is indexed, stands in most documents.
using IsCommonWord = std::function<bool(const std::string& word)>;

// What documents need not hold, each word once, in the order of the query.
struct OptionalWords {
  std::vector<std::string> stop_words;  // these are left out of the query
  std::vector<std::string> common;      // these count for the score
};

// Returns whether `query` is made of words that hang together (e-mail).
bool IsJoined(const Query& query);

// Returns whether `query` is e.g. or i.e.
bool IsAbbreviation(const Query& query);

// Returns whether `query` is a stop word.
bool IsStop(const Query& query);

// The same, or another word that people ask with: using, anyone, e.g.
bool IsStopOfQuestion(const Query& query);

// Drops those of `words`, which stand side by side, for which `is_stop`, and makes those of the
// others optional that are common; adds both to `*optional`. Does neither where that would leave
// nothing but parts under NOT. `is_common` may be empty: no word is.
std::vector<Query> WithOptionalWords(std::vector<Query> words, bool (*is_stop)(const Query&),
                                     const IsCommonWord& is_common, OptionalWords* optional);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_OPTIONAL_WORDS_H_
