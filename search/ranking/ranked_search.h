// SPDX-License-Identifier: GPL-3.0-or-later
// The best documents of a snapshot for a query.
#ifndef KESTAN_SEARCH_RANKING_RANKED_SEARCH_H_
#define KESTAN_SEARCH_RANKING_RANKED_SEARCH_H_

#include <kestan/search/index_reader.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <string>
#include <vector>

#include "search/query/query.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

struct RankedDocument {
  DocumentId id;
  double score = 0;
};

// Documents of one segment.
struct ScoredDocuments {
  std::uint32_t segment = 0;
  std::vector<Code> codes;     // ascending
  std::vector<double> scores;  // as many
};

struct RankedDocuments {
  std::uint64_t total = 0;           // how many match
  std::vector<RankedDocument> best;  // the best first; of equal score, in order of their names
  std::vector<std::string> terms;    // matched, sorted; none that stands under NOT
};

// Finds the documents that match `query` and ranks them. The score of a document is the sum, over
// the scoring clauses of the query, of their BM25 scores
//
//   idf * tf * (k1 + 1) / (tf + k1 * (1 - b + b * words / mean words)),
//
// where idf = ln(1 + (N - n + 0.5) / (n + 0.5)), in queries of more than 20 clauses raised to the
// power IdfExponent(), and a clause that the query has twice counts twice; and a bonus for each two
// clauses that follow each other in the query, both in the document,
//
//   proximity_bonus * min(idf, next idf) / d²,
//
// where d is the smallest distance in words between positions of the two: term pairs as Rasolofo
// and Savoy weigh them (ECIR 2003), of the nearest pair alone; and for each clause among the first
// 15 words of the document, its title as a rule,
//
//   opening_bonus * idf.
//
// A query of one clause has the latter only with WordsMean::kBest, times 1 + 1/p if the first place
// is p, so that the title "passwd" comes before "update passwd"; with the others, which programs
// ask with, positions need not be read for it. All figures are those of living
// documents, and all sums are made in the order of the query: no merge and no number of threads
// changes a score. Options out of range are brought into it: k1 and the bonus to 0 to 1000, b to 0
// to 1.
//
// Documents that `options.filter` does not want do not match; they count in the figures above.
//
// Keeps the `options.limit` best in a heap. Searches segments in parallel where there is enough to
// do.
//   Returns  kDamaged.
Result<RankedDocuments> RankedSearch(const Query& query, const Snapshot& snapshot,
                                     const SearchOptions& options);

// Finds all documents that match `query`, with the scores that RankedSearch() gives them; those of
// each segment by themselves, in order of codes. `options.limit` counts for nothing.
//   Returns  segments in their order, without those where nothing matches; kDamaged.
Result<std::vector<ScoredDocuments>> ScoredSearch(const Query& query, const Snapshot& snapshot,
                                                  SearchOptions options);

// Counts the documents that match, and that `filter` wants if there is one.
//   Returns  kDamaged.
Result<std::uint64_t> CountMatches(const Query& query, const Snapshot& snapshot,
                                   const DocumentFilter& filter = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_RANKED_SEARCH_H_
