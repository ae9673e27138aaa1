// SPDX-License-Identifier: GPL-3.0-or-later
// How far a few positions are from a few others.
#ifndef KESTAN_SEARCH_MATCHING_OPERATORS_GAPS_H_
#define KESTAN_SEARCH_MATCHING_OPERATORS_GAPS_H_

#include <kestan/postings.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "search/matching/operators/matches.h"

namespace kestan::search {

// Of so many positions at most, all pairs are compared, kLanes at once. That takes less time than a
// merge, each step of which waits for the one before.
constexpr std::size_t kFewPositions = 32;

// How many words stand between two positions, for each of kLanes positions.
using Gaps = std::array<std::int16_t, kLanes>;

// No other position, or one in the same place.
constexpr std::int16_t kNoGap = 0x7fff;

// Returns whether there are so few positions that they can be compared by gaps: some, all known,
// their differences 16-bit numbers.
inline bool AreFew(Positions positions) {
  return positions.count > 0 && positions.count <= kFewPositions && positions.first[0] > 0 &&
         positions.first[positions.count - 1] <= kNoGap;
}

constexpr Gaps NoGaps() {
  Gaps gaps{};
  for (std::int16_t& gap : gaps) gap = kNoGap;
  return gaps;
}

// Makes each gap that between its one of kLanes `positions` and `other`, where that is smaller.
// Compilers turn the loop into a few vector instructions.
inline void NarrowGaps(const Position* positions, Position other, Gaps* gaps) {
  for (std::size_t i = 0; i < kLanes; ++i) {
    const auto difference = static_cast<std::int16_t>(positions[i] - other);
    const auto gap = static_cast<std::int16_t>((std::abs(difference) - 1) & kNoGap);
    (*gaps)[i] = std::min((*gaps)[i], gap);
  }
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_OPERATORS_GAPS_H_
