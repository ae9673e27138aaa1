// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <limits>
#include <utility>

#include "search/matching/operators/common.h"
#include "search/matching/operators/operators.h"

namespace kestan::search {
namespace {

// The positions of all operands in one document.
class PositionsOfAll {
 public:
  // Finds those of `code`, which all `operands` have.
  Positions Of(const std::vector<Found>& operands, Code code) {
    where_.clear();
    for (std::size_t i = 0; i < operands.size(); ++i) {
      const Positions found = reader_.Of(*operands[i], places_.Find(i, *operands[i], code));
      where_.insert(where_.end(), found.begin(), found.end());
    }
    std::sort(where_.begin(), where_.end());
    return {where_.data(), where_.size()};
  }

 private:
  Places places_;
  PositionReader reader_;
  std::vector<Position> where_;
};

}  // namespace

std::vector<Code> CommonCodes(const std::vector<Found>& operands) {
  std::vector<const Occurrences*> rarest_first;
  rarest_first.reserve(operands.size());
  for (const Found& operand : operands) rarest_first.push_back(operand.get());
  std::sort(rarest_first.begin(), rarest_first.end(),
            [](const Occurrences* a, const Occurrences* b) { return a->size() < b->size(); });
  std::vector<Code> common = rarest_first.front()->codes;
  for (std::size_t i = 1; i < rarest_first.size(); ++i) {
    const std::vector<Place> places = PlacesOf(common, rarest_first[i]->codes);
    std::size_t kept = 0;
    for (std::size_t j = 0; j < common.size(); ++j) {
      common[kept] = common[j];
      kept += places[j] != kNoPlace ? 1 : 0;
    }
    common.resize(kept);
  }
  return common;
}

Occurrences Intersect(const std::vector<Found>& operands, Need need) {
  Occurrences found;
  found.codes = CommonCodes(operands);
  if (need == Need::kCodes) return found;
  std::vector<std::uint32_t> counts(found.size(), std::numeric_limits<std::uint32_t>::max());
  for (const Found& operand : operands) {
    ForEachCommon(found.codes, operand->codes, [&](std::size_t i, std::size_t place) {
      counts[i] = std::min(counts[i], operand->counts[place]);
    });
  }
  if (need == Need::kCounts) {
    found.counts = std::move(counts);
    return found;
  }
  Occurrences with_positions;
  PositionsOfAll all;
  for (const Code code : found.codes) with_positions.Append(code, all.Of(operands, code));
  with_positions.counts = std::move(counts);
  return with_positions;
}

}  // namespace kestan::search
