// SPDX-License-Identifier: GPL-3.0-or-later
// How near words of a query stand to each other in a document.
#ifndef KESTAN_SEARCH_RANKING_PROXIMITY_H_
#define KESTAN_SEARCH_RANKING_PROXIMITY_H_

#include "search/matching/operators/matches.h"

namespace kestan::search {

// Returns how far the nearest positions of two lists, which ascend, are from each other, those in
// the same place and those that may be anywhere (0) left out; 0 if there are none.
int SmallestDistance(PaddedPositions left, PaddedPositions right);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_PROXIMITY_H_
