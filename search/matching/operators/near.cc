// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/postings.h>

#include <algorithm>
#include <cstdint>

#include "search/matching/operators/chain.h"
#include "search/matching/operators/gaps.h"

namespace kestan::search {
namespace {

bool HasAnywhere(Positions positions) { return positions.count > 0 && *positions.first == 0; }

// Returns whether `position`, at `other` in a list, is near one that comes after it there.
bool HasNextNear(const Position* other, const Position* end, int last) {
  const Position* const next = std::upper_bound(other, end, *other);
  return next != end && *next <= last;
}

// Keeps of `after` what is near one of `before`. Steps are taken without branches: which list
// comes next cannot be predicted.
std::size_t KeepNearKnown(Positions before, Positions after, int distance, Position* kept) {
  std::size_t size = 0;
  std::size_t i = 0;
  std::size_t j = 0;
  std::size_t was_near = 0;
  while (i < before.count && j < after.count) {
    const int other = before.first[i];
    const int position = after.first[j];
    const auto is_behind = static_cast<std::size_t>(other < position - distance);
    auto is_near = static_cast<std::size_t>(other <= position + distance) & (is_behind ^ 1);
    if (other == position) {  // what stands in the same place is not near
      const bool is_repeated = j > 0 && after.first[j - 1] == position;
      is_near =
          is_repeated ? was_near : HasNextNear(before.first + i, before.end(), position + distance);
    }
    kept[size] = after.first[j];
    size += is_near;
    i += is_behind;
    j += is_behind ^ 1;
    was_near = is_near;
  }
  return size;
}

// The same for few positions.
std::size_t KeepNearByGaps(Positions before, PaddedPositions after, int distance, Position* kept) {
  const auto end = static_cast<std::int16_t>(std::min<int>(distance, kNoGap));
  std::size_t size = 0;
  std::size_t was_near = 0;
  for (std::size_t i = 0; i < after.count; i += kLanes) {
    Gaps gaps = NoGaps();
    for (const Position position : before) NarrowGaps(after.first + i, position, &gaps);
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      kept[size] = after.first[i + lane];
      was_near = gaps[lane] < end ? 1 : 0;
      size += was_near;
    }
  }
  return size - was_near * (after.padded() - after.count);  // what repeats the last one
}

std::size_t KeepNear(Positions before, PaddedPositions after, int distance, Position* kept) {
  if (AreFew(before) && AreFew(after)) return KeepNearByGaps(before, after, distance, kept);
  const Positions known = Known(after);
  std::size_t size = known.count;
  if (HasAnywhere(before)) {
    std::copy(known.begin(), known.end(), kept);
  } else {
    size = KeepNearKnown(before, known, std::min<int>(distance, kMaxPosition), kept);
  }
  if (known.count == after.count) return size;
  Position* const end = std::copy(before.begin(), before.end(), kept + size);
  std::sort(kept, end);
  return static_cast<std::size_t>(end - kept);
}

}  // namespace

Occurrences Near(const std::vector<Found>& operands, const std::vector<int>& distances, Need need) {
  return MatchChain(operands, need,
                    [&](std::size_t i, Positions before, PaddedPositions after, Position* kept) {
                      return KeepNear(before, after, distances[i], kept);
                    });
}

}  // namespace kestan::search
