// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/proximity.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "search/matching/operators/gaps.h"

namespace kestan::search {
namespace {

constexpr int kNone = kMaxPosition + 1;

// Goes to the last of those that are the same as `*place`.
const Position* LastOfRun(const Position* place, const Position* end) {
  return std::upper_bound(place, end, *place) - 1;
}

// The nearest are neighbours in the merged list. What stands in the same place is compared with
// what comes before and after it.
int DistanceBesideSame(Positions left, Positions right) {
  const Position* a = left.begin();
  const Position* b = right.begin();
  int last_a = -kNone;  // the last position gone past in each list
  int last_b = -kNone;
  int smallest = kNone;
  while ((a != left.end() || b != right.end()) && smallest > 1) {
    const int next_a = a != left.end() ? *a : kNone;
    const int next_b = b != right.end() ? *b : kNone;
    if (next_a <= next_b) {
      smallest = std::min(smallest, next_a - last_b);
    }
    if (next_b <= next_a) {
      smallest = std::min(smallest, next_b - last_a);
    }
    if (next_a <= next_b) {
      last_a = next_a;
      a = LastOfRun(a, left.end()) + 1;
    }
    if (next_b <= next_a) {
      last_b = next_b;
      b = LastOfRun(b, right.end()) + 1;
    }
  }
  return smallest;
}

// Each step goes on in the list that is behind, without a branch: which one cannot be predicted.
int DistanceByMerging(Positions left, Positions right) {
  left = Known(left);
  right = Known(right);
  int smallest = kNone;
  for (std::size_t i = 0, j = 0; i < left.count && j < right.count;) {
    const int difference = right.first[j] - left.first[i];
    smallest = std::min(smallest, std::abs(difference));
    i += static_cast<std::size_t>(difference >= 0);
    j += static_cast<std::size_t>(difference < 0);
  }
  if (smallest == 0) smallest = DistanceBesideSame(left, right);  // rare: Cat beside cat
  return smallest < kNone ? smallest : 0;
}

int DistanceByGaps(PaddedPositions longer, Positions shorter) {
  Gaps gaps = NoGaps();
  for (const Position position : shorter) {
    for (std::size_t i = 0; i < longer.count; i += kLanes) {
      NarrowGaps(longer.first + i, position, &gaps);
    }
  }
  std::int16_t smallest = kNoGap;
  for (const std::int16_t gap : gaps) smallest = std::min(smallest, gap);
  return smallest < kNoGap ? smallest + 1 : 0;
}

}  // namespace

int SmallestDistance(PaddedPositions left, PaddedPositions right) {
  if (!AreFew(left) || !AreFew(right)) return DistanceByMerging(left, right);
  return left.count < right.count ? DistanceByGaps(right, left) : DistanceByGaps(left, right);
}

}  // namespace kestan::search
