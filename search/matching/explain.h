// SPDX-License-Identifier: GPL-3.0-or-later
// What each part of a query finds.
#ifndef KESTAN_SEARCH_MATCHING_EXPLAIN_H_
#define KESTAN_SEARCH_MATCHING_EXPLAIN_H_

#include <kestan/search/explanation.h>
#include <kestan/search/status.h>

#include "search/query/query.h"
#include "search/segment/snapshot.h"

namespace kestan::search {

// Evaluates `query` part by part in all segments. Operands of AND and OR that are equal are
// explained once.
//   Returns  kDamaged.
Result<Explanation> ExplainQuery(const Query& query, const Snapshot& snapshot);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_EXPLAIN_H_
