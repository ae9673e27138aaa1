#include "search/ranking/proximity.h"

#include <algorithm>

namespace kestan::search {
namespace {

constexpr int kNone = kMaxPosition + 1;

// Goes to the last of those that are the same as `*place`.
const Position* LastOfRun(const Position* place, const Position* end) {
  return std::upper_bound(place, end, *place) - 1;
}

const Position* FirstKnown(Positions positions) {
  return std::upper_bound(positions.begin(), positions.end(), Position{0});
}

}  // namespace

// Of positions that ascend, the nearest are neighbours in the merged list. What stands in one place
// is compared with what comes before and after it.
int SmallestDistance(Positions left, Positions right) {
  const Position* a = FirstKnown(left);
  const Position* b = FirstKnown(right);
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
  return smallest < kNone ? smallest : 0;
}

}  // namespace kestan::search
