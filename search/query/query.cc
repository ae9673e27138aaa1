// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace kestan::search {

bool operator==(const Query& left, const Query& right) {
  return left.kind == right.kind && left.word == right.word && left.edits == right.edits &&
         left.distance_words == right.distance_words && left.operands == right.operands;
}

std::optional<Query> Combined(Query::Kind kind, std::vector<Query> operands) {
  if (operands.empty()) return std::nullopt;
  if (operands.size() == 1) return std::move(operands.front());
  Query query;
  query.kind = kind;
  query.operands = std::move(operands);
  return query;
}

bool QueryLess::operator()(const Query* left, const Query* right) const {
  const auto leaf = [](const Query& query) {
    return std::tie(query.kind, query.word, query.edits, query.distance_words);
  };
  if (leaf(*left) != leaf(*right)) return leaf(*left) < leaf(*right);
  const std::size_t common = std::min(left->operands.size(), right->operands.size());
  for (std::size_t i = 0; i < common; ++i) {
    const Query* const a = &left->operands[i];
    const Query* const b = &right->operands[i];
    if (*a == *b) continue;
    return (*this)(a, b);
  }
  return left->operands.size() < right->operands.size();
}

}  // namespace kestan::search
