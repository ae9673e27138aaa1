#include <kestan/format/posting.h>

#include <algorithm>

#include "search/matching/operators/chain.h"

namespace kestan::search {
namespace {

// What may be anywhere has position 0, before all others.
bool HasAnywhere(Positions positions) { return positions.count > 0 && *positions.first == 0; }

// Goes through two lists at once. A position that stands in the list several times is looked at
// once.
class NearbyPositions {
 public:
  NearbyPositions(Positions others, int distance)
      : next_(others.begin()), end_(others.end()), distance_(distance) {}

  // Returns whether one of the others is near `position`, which is not before the last one asked.
  bool Has(int position) {
    if (position == last_) return last_answer_;
    while (next_ != end_ && *next_ < position - distance_) ++next_;
    const Position* other = next_;
    // What stands in the same place is not near.
    if (other != end_ && *other == position) other = std::upper_bound(other, end_, *other);
    if (other != end_ && *other < position) {
      last_answer_ = true;
    } else {
      last_answer_ = other != end_ && *other <= position + distance_;
    }
    last_ = position;
    return last_answer_;
  }

 private:
  const Position* next_;
  const Position* const end_;
  const int distance_;
  int last_ = -1;
  bool last_answer_ = false;
};

void KeepNear(Positions before, Positions after, int distance, std::vector<Position>* kept) {
  NearbyPositions nearby(before, std::min<int>(distance, kMaxPosition));
  const bool all = HasAnywhere(before);
  for (const Position position : after) {
    if (position != 0 && (all || nearby.Has(position))) kept->push_back(position);
  }
  if (!HasAnywhere(after)) return;
  kept->insert(kept->end(), before.begin(), before.end());
  std::sort(kept->begin(), kept->end());
}

}  // namespace

Occurrences Near(const std::vector<Found>& operands, const std::vector<int>& distances) {
  return MatchChain(
      operands, [&](std::size_t i, Positions before, Positions after, std::vector<Position>* kept) {
        KeepNear(before, after, distances[i], kept);
      });
}

}  // namespace kestan::search
