// SPDX-License-Identifier: GPL-3.0-or-later
// From documents that were found to what a search returns of them.
#ifndef KESTAN_SEARCH_INDEX_DOCUMENTS_HITS_H_
#define KESTAN_SEARCH_INDEX_DOCUMENTS_HITS_H_

#include <kestan/search/index_reader.h>
#include <kestan/search/status.h>

#include <functional>
#include <vector>

#include "search/ranking/ranked_search.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

// Appends a hit for each document of `best`, the first of which has the best score.
//   Returns  kDamaged.
Status ListHits(const std::vector<RankedDocument>& best, const Snapshot& snapshot, bool with_titles,
                std::vector<Hit>* hits);

// Calls `visit` with each document of `found`, until it returns false.
//   Returns  kDamaged.
Status VisitMatches(const std::vector<ScoredDocuments>& found, const Snapshot& snapshot,
                    const std::function<bool(const Match&)>& visit);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_DOCUMENTS_HITS_H_
