// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/snapshot.h"

#include <algorithm>

namespace kestan::search {

std::uint64_t Snapshot::living_documents() const {
  std::uint64_t sum = 0;
  for (const auto& segment : segments) sum += segment->living_documents();
  return sum;
}

std::uint64_t Snapshot::living_words() const {
  std::uint64_t sum = 0;
  for (const auto& segment : segments) sum += segment->living_words();
  return sum;
}

bool Snapshot::with_positions() const {
  return std::all_of(segments.begin(), segments.end(),
                     [](const auto& segment) { return segment->with_positions(); });
}

}  // namespace kestan::search
