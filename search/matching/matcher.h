// From a query and a segment to the documents that match.
#ifndef KESTAN_SEARCH_MATCHING_MATCHER_H_
#define KESTAN_SEARCH_MATCHING_MATCHER_H_

#include <kestan/search/status.h>

#include <functional>
#include <string>
#include <vector>

#include "search/matching/matches.h"
#include "search/query/query.h"
#include "search/segment/segment.h"

namespace kestan::search {

// What a clause of a query needs of an occurrence.
enum class Need { kCounts, kPositions };

// The terms of the vocabulary that a word of a query stands for, the word itself, a prefix, a fuzzy
// word or inflections; the same in all segments of a snapshot.
using TermsOfNode = std::function<const std::vector<std::string>&(const Query& node)>;

// Finds the documents of `segment` that match `query`, an operator a file (operators/).
//
//   a word       its postings; what stands for several words: their union, counts added up
//   AND          the documents of all operands; counts: the least of them
//   OR           those of any; counts added up
//   NOT          the living documents without the operand's; each counts once
//   NEAR/k       both, at most k positions apart in either order; the count is the number of
//                positions of the last operand that match; so are the positions
//   "in quotes"  each word one position after the word before
//
// In a segment without positions, NEAR and quotes mean AND.
//   Returns  kDamaged.
Result<Occurrences> FindMatches(const Query& query, const Segment& segment,
                                const TermsOfNode& terms_of, Need need = Need::kCounts);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_MATCHER_H_
