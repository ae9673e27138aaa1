// SPDX-License-Identifier: GPL-3.0-or-later
// Documents that several lists have.
#ifndef KESTAN_SEARCH_MATCHING_OPERATORS_COMMON_H_
#define KESTAN_SEARCH_MATCHING_OPERATORS_COMMON_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/matching/operators/matches.h"

namespace kestan::search {

// A list so many times as long as another is searched by doubling steps instead of read.
constexpr std::size_t kMuchLonger = 16;

// Returns the place of the first code in `codes` from `place` on that is not before `code`.
inline std::size_t SeekCode(const std::vector<Code>& codes, std::size_t place, Code code) {
  std::size_t step = 1;
  std::size_t end = place;
  while (end < codes.size() && codes[end] < code) {
    place = end + 1;
    end += step;
    step *= 2;
  }
  const auto first = codes.begin() + static_cast<std::ptrdiff_t>(place);
  const auto last = codes.begin() + static_cast<std::ptrdiff_t>(std::min(end, codes.size()));
  return static_cast<std::size_t>(std::lower_bound(first, last, code) - codes.begin());
}

// Calls `visit` with the places of each code that both lists have, in ascending order, going
// through both at once.
template <typename Visit>
void MergeCommon(const std::vector<Code>& left, const std::vector<Code>& right, Visit visit) {
  const bool seek_left = left.size() / kMuchLonger > right.size();
  const bool seek_right = right.size() / kMuchLonger > left.size();
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < left.size() && j < right.size()) {
    const Code a = left[i];
    const Code b = right[j];
    if (a == b) {
      visit(i++, j++);
    } else if (seek_left && a < b) {
      i = SeekCode(left, i, b);
    } else if (seek_right && b < a) {
      j = SeekCode(right, j, a);
    } else {
      i += a < b ? 1 : 0;
      j += b < a ? 1 : 0;
    }
  }
}

// A place in a list of codes.
using Place = std::uint16_t;
constexpr Place kNoPlace = 0xffff;  // no document has code 0: the last place is 65534

// Returns where each of `codes` is in `list`, kNoPlace for those that are not there. Both ascend.
std::vector<Place> PlacesOf(const std::vector<Code>& codes, const std::vector<Code>& list);

// Returns whether lists of so many codes are so long, and so alike in length, that a table of
// places finds their common codes faster than a merge, which has to guess which list comes next.
constexpr bool AreWorthTable(std::size_t left, std::size_t right) {
  constexpr std::size_t kFewCodes = 1000;
  constexpr std::size_t kTooMuchLonger = 100;
  return left + right >= kFewCodes && left / kTooMuchLonger <= right &&
         right / kTooMuchLonger <= left;
}

// Calls `visit` with the places of each code that both lists have, in ascending order.
template <typename Visit>
void ForEachCommon(const std::vector<Code>& left, const std::vector<Code>& right, Visit visit) {
  if (!AreWorthTable(left.size(), right.size())) return MergeCommon(left, right, visit);
  const bool looks_left_up = left.size() <= right.size();
  const std::vector<Place> places = looks_left_up ? PlacesOf(left, right) : PlacesOf(right, left);
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::size_t place = places[i];
    if (place == kNoPlace) continue;
    looks_left_up ? visit(i, place) : visit(place, i);
  }
}

// Where documents are in several lists. They are asked for in ascending order.
class Places {
 public:
  // Returns the place of `code` in `found`, the list number `list`, or of the first code after it.
  std::size_t Find(std::size_t list, const Occurrences& found, Code code) {
    if (list >= next_.size()) next_.resize(list + 1);
    std::size_t& next = next_[list];
    const bool is_here = next < found.size() && found.codes[next] == code;
    if (!is_here) next = SeekCode(found.codes, next, code);
    return next;
  }

 private:
  std::vector<std::size_t> next_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_OPERATORS_COMMON_H_
