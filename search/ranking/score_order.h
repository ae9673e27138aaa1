// SPDX-License-Identifier: GPL-3.0-or-later
// Sorting documents by their scores.
#ifndef KESTAN_SEARCH_RANKING_SCORE_ORDER_H_
#define KESTAN_SEARCH_RANKING_SCORE_ORDER_H_

#include <vector>

#include "search/ranking/ranked_search.h"

namespace kestan::search {

// Sorts `documents`, whose scores are 0 or more, by score, the highest first; of equal score, in
// the order in which they were. The time is in proportion to their number.
void SortByScore(std::vector<RankedDocument>* documents);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_SCORE_ORDER_H_
