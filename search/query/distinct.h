// SPDX-License-Identifier: GPL-3.0-or-later
// Equal queries among many.
#ifndef KESTAN_SEARCH_QUERY_DISTINCT_H_
#define KESTAN_SEARCH_QUERY_DISTINCT_H_

#include <cstddef>
#include <vector>

#include "search/query/query.h"

namespace kestan::search {

// A query, and how often it occurs among others.
struct Repeated {
  const Query* query = nullptr;
  std::size_t times = 1;
};

// Returns each of `queries` once, in the order in which they came first. Borrows them.
std::vector<Repeated> Distinct(const std::vector<const Query*>& queries);

// The same for the operands of a query.
std::vector<Repeated> Distinct(const std::vector<Query>& queries);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_DISTINCT_H_
