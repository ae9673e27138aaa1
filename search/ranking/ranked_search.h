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

struct RankedDocuments {
  std::uint64_t total = 0;           // how many match
  std::vector<RankedDocument> best;  // the best first; of equal score, in order of their names
  std::vector<std::string> terms;    // matched, sorted; none that stands under NOT
};

// Finds the documents that match `query` and ranks them: the sum over the scoring clauses of the
// query of their BM25 scores, from term frequencies, document frequencies and lengths of living
// documents alone, so that no merge and no number of threads changes a score; and a bonus where
// words of different clauses stand near each other. Keeps the `options.limit` best in a heap.
// Searches segments in parallel where there is enough to do.
Result<RankedDocuments> RankedSearch(const Query& query, const Snapshot& snapshot,
                                     const SearchOptions& options);

// Counts the documents that match.
Result<std::uint64_t> CountMatches(const Query& query, const Snapshot& snapshot);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_RANKED_SEARCH_H_
