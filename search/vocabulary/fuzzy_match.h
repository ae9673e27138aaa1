// SPDX-License-Identifier: GPL-3.0-or-later
// Words of an index that resemble a given one, and which of them are the closest.
#ifndef KESTAN_SEARCH_VOCABULARY_FUZZY_MATCH_H_
#define KESTAN_SEARCH_VOCABULARY_FUZZY_MATCH_H_

#include <cstddef>
#include <string>

namespace kestan::search {

struct FuzzyMatch {
  std::string word;
  int edits = 0;
  std::size_t documents = 0;  // its document frequency
};

// Returns whether `left` comes before `right`: it has fewer edits, then more documents, then the
// smaller bytes.
bool IsCloser(const FuzzyMatch& left, const FuzzyMatch& right);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_FUZZY_MATCH_H_
