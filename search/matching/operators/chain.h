// SPDX-License-Identifier: GPL-3.0-or-later
// Operands in a row, each at its place beside the one before.
#ifndef KESTAN_SEARCH_MATCHING_OPERATORS_CHAIN_H_
#define KESTAN_SEARCH_MATCHING_OPERATORS_CHAIN_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/matching/operators/common.h"
#include "search/matching/operators/operators.h"

namespace kestan::search {

// Calls `match` with each code that all `operands` have, once its places in them are `*places`.
template <typename Match>
void ForEachCommonPlace(const std::vector<Found>& operands, std::vector<std::size_t>* places,
                        Match match) {
  const std::vector<Code> common = CommonCodes(operands);
  if (operands.size() == 2) {
    const std::vector<Place> left = PlacesOf(common, operands[0]->codes);
    const std::vector<Place> right = PlacesOf(common, operands[1]->codes);
    for (std::size_t i = 0; i < common.size(); ++i) {
      (*places)[0] = left[i];
      (*places)[1] = right[i];
      match(common[i]);
    }
    return;
  }
  Places next;
  for (const Code code : common) {
    for (std::size_t i = 0; i < operands.size(); ++i) {
      (*places)[i] = next.Find(i, *operands[i], code);
    }
    match(code);
  }
}

// Finds the documents of all `operands` in which positions are left after going from one operand to
// the next. `keep(i, before, after, kept)` writes to `kept`, which has room for all, in ascending
// order, those positions that the operand i and those before it leave, where `before` was left so
// far; it returns how many they are.
template <typename Keep>
Occurrences MatchChain(const std::vector<Found>& operands, Need need, Keep keep) {
  Occurrences found;
  std::vector<std::size_t> places(operands.size());  // of one document, in each operand
  PositionReader first;
  PositionReader next;
  std::vector<Position> before;
  std::vector<Position> kept;
  const auto match = [&](Code code) {
    Positions left = first.Of(*operands[0], places[0]);
    for (std::size_t i = 1; i < operands.size() && left.count > 0; ++i) {
      const PaddedPositions after = next.Of(*operands[i], places[i]);
      kept.resize(std::max(kept.size(), left.count + after.padded()));
      left.count = keep(i, left, after, kept.data());
      before.swap(kept);
      left.first = before.data();
    }
    if (left.count == 0) return;
    if (need == Need::kPositions) {
      found.Append(code, left);
    } else {
      found.codes.push_back(code);
      found.counts.push_back(static_cast<std::uint32_t>(left.count));
    }
  };
  ForEachCommonPlace(operands, &places, match);
  return found;
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_OPERATORS_CHAIN_H_
