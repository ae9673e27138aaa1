// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/operators/common.h"

#include <array>
#include <numeric>

namespace kestan::search {
namespace {

constexpr std::size_t kCodesOfTable = 4096;  // whose places the fastest cache holds

}  // namespace

// One table serves for some thousand codes after the other.
std::vector<Place> PlacesOf(const std::vector<Code>& codes, const std::vector<Code>& list) {
  std::vector<Place> places(codes.size(), kNoPlace);
  if (&codes == &list) {
    std::iota(places.begin(), places.end(), Place{0});
    return places;
  }
  if (!AreWorthTable(codes.size(), list.size())) {
    MergeCommon(codes, list,
                [&](std::size_t i, std::size_t j) { places[i] = static_cast<Place>(j); });
    return places;
  }
  std::array<Place, kCodesOfTable> place_of;
  std::size_t next = 0;
  for (std::size_t i = 0; i < codes.size();) {
    const std::size_t start = codes[i] / kCodesOfTable * kCodesOfTable;
    const std::size_t end = start + kCodesOfTable;
    place_of.fill(kNoPlace);
    next = SeekCode(list, next, static_cast<Code>(start));
    for (; next < list.size() && list[next] < end; ++next) {
      place_of[list[next] - start] = static_cast<Place>(next);
    }
    for (; i < codes.size() && codes[i] < end; ++i) places[i] = place_of[codes[i] - start];
  }
  return places;
}

}  // namespace kestan::search
