// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of a query that are looked at one by one.
#ifndef KESTAN_SEARCH_QUERY_CLAUSES_H_
#define KESTAN_SEARCH_QUERY_CLAUSES_H_

#include <vector>

#include "search/query/query.h"

namespace kestan::search {

// Returns the clauses of `query` that add to the score of a document: what AND and OR join,
// optional parts too, without what is under NOT. Each can be evaluated by itself. Borrows `query`.
std::vector<const Query*> ScoringClauses(const Query& query);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_CLAUSES_H_
