// How often documents have what a clause of a query asks for.
#ifndef KESTAN_SEARCH_RANKING_LISTING_TERM_FREQUENCY_H_
#define KESTAN_SEARCH_RANKING_LISTING_TERM_FREQUENCY_H_

#include <kestan/results.h>

#include <cstdint>
#include <vector>

#include "search/query/evaluation/result_set.h"
#include "search/query/query.h"

namespace kestan::search {

// A document and how often a clause matches in it.
struct TermFrequency {
  Code code = 0;
  std::uint32_t tf = 0;
};

// Returns the documents of `set`, which `clause` finds, in ascending order of their codes. What tf
// counts depends on the clause:
//   a word, a prefix, a fuzzy word, inflections: occurrences of the word, or of all words that it
//     stands for together, up to kMaxScore;
//   NEAR: occurrences of its last operand within the distance.
// An index without positions counts each word once, and NEAR once.
std::vector<TermFrequency> TermFrequenciesIn(const ResultSet& set, const Query& clause);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_LISTING_TERM_FREQUENCY_H_
