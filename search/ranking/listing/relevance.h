// Ranking documents by how likely they are to answer a question.
#ifndef KESTAN_SEARCH_RANKING_LISTING_RELEVANCE_H_
#define KESTAN_SEARCH_RANKING_LISTING_RELEVANCE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "search/ranking/listing/hits.h"
#include "search/ranking/listing/term_frequency.h"

namespace kestan::search {

// The sizes of at most so many hits are looked up: of those that rank first without them.
constexpr std::size_t kMeasuredHits = 1000;

// Returns the size of a document, in a unit that is the same for all; nothing if it is not known.
using SizeOf = std::function<std::optional<std::uint64_t>(const std::string& name)>;

// One clause of the query, or several that are equal.
struct RankedClause {
  // Returns what the clause finds by itself, in ascending order of codes. Called once.
  std::function<std::vector<TermFrequency>()> documents;
  std::size_t times = 1;  // how often the query has it
};

// Sorts `hits`, which are in ascending order of codes, by relevance, the most relevant first, and
// sets their percentages to that of the best one. Among equals the order stays.
//
// The relevance of a document is the sum of the BM25 scores of the clauses that find it (bm25.h),
// where N is `documents` and n how many documents the clause finds. A clause that the query has
// twice counts twice. tf is how often the document has the clause (term_frequency.h), at least 1. A
// document whose size is not known, and each hit after the first kMeasuredHits, is taken to be of
// mean size. The documents of one clause at a time are in memory.
void SortByRelevance(const std::vector<RankedClause>& clauses, std::uint64_t documents,
                     const SizeOf& size_of, std::vector<EngineHit>* hits);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_LISTING_RELEVANCE_H_
