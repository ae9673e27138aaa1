// Ranking documents by how likely they are what a question is about.
#ifndef KESTAN_SEARCH_RANKING_RELEVANCE_H_
#define KESTAN_SEARCH_RANKING_RELEVANCE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "search/ranking/hits.h"

namespace kestan::search {

// How many of the hits are asked for their size: those that seem best without it.
constexpr std::size_t kMeasuredHits = 1000;

// Returns the size of a document, in a unit that is the same for all; nothing if it is not known.
using SizeOf = std::function<std::optional<std::uint64_t>(const std::string& name)>;

// One part of the query, or several that are equal.
struct RankedPart {
  std::function<std::string()> listing;  // what the engine lists for it by itself; called once
  std::size_t times = 1;                 // how often the query has it
};

// Sorts `hits` by relevance, the most relevant first, and sets their percentages to that of the
// best one. Among equals the order stays.
//
// A part that the query has twice counts twice. One listing at a time is in memory. A document's
// relevance is the sum over the parts that find it of
//
//   ln(1 + (N - n + 0.5) / (n + 0.5)) * t * 2.6 / (t + 1.6 * (0.25 + 0.75 * size / mean size))
//
// (BM25), where N is `documents`, n how many documents the part finds, and t how often the document
// has it: its percentage in the listing as a multiple of the least one there, since a listing tells
// no more. A document whose size is not known, and each hit after the first kMeasuredHits, is taken
// to be of mean size.
void SortByRelevance(const std::vector<RankedPart>& parts, std::uint64_t documents,
                     const SizeOf& size_of, std::vector<Hit>* hits);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_RELEVANCE_H_
