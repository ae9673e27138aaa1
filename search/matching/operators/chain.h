// Operands in a row, each at its place beside the one before.
#ifndef KESTAN_SEARCH_MATCHING_OPERATORS_CHAIN_H_
#define KESTAN_SEARCH_MATCHING_OPERATORS_CHAIN_H_

#include <cstddef>
#include <vector>

#include "search/matching/operators/common.h"
#include "search/matching/operators/operators.h"

namespace kestan::search {

// Finds the documents of all `operands` in which positions are left after going from one operand to
// the next. `keep(i, before, after, &kept)` appends to `kept`, in ascending order, those positions
// that the operand i and those before it leave, where `before` was left so far.
template <typename Keep>
Occurrences MatchChain(const std::vector<Found>& operands, Keep keep) {
  Occurrences found;
  Places places;
  PositionReader reader;
  std::vector<Position> before;
  std::vector<Position> kept;
  for (const Code code : CommonCodes(operands)) {
    const auto where = [&](std::size_t i) {
      return reader.Of(*operands[i], places.Find(i, *operands[i], code));
    };
    const Positions first = where(0);
    kept.assign(first.begin(), first.end());
    for (std::size_t i = 1; i < operands.size() && !kept.empty(); ++i) {
      before.swap(kept);
      kept.clear();
      keep(i, Positions{before.data(), before.size()}, where(i), &kept);
    }
    if (!kept.empty()) found.Append(code, {kept.data(), kept.size()});
  }
  return found;
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_OPERATORS_CHAIN_H_
