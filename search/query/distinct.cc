// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/distinct.h"

#include <map>

namespace kestan::search {

std::vector<Repeated> Distinct(const std::vector<const Query*>& queries) {
  std::vector<Repeated> distinct;
  std::map<const Query*, std::size_t, QueryLess> places;
  for (const Query* query : queries) {
    const auto [place, is_new] = places.emplace(query, distinct.size());
    if (is_new) {
      distinct.push_back({query, 1});
    } else {
      ++distinct[place->second].times;
    }
  }
  return distinct;
}

std::vector<Repeated> Distinct(const std::vector<Query>& queries) {
  std::vector<const Query*> pointers;
  pointers.reserve(queries.size());
  for (const Query& query : queries) pointers.push_back(&query);
  return Distinct(pointers);
}

}  // namespace kestan::search
