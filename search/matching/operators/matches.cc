#include "search/matching/operators/matches.h"

#include <algorithm>

namespace kestan::search {

void Occurrences::Append(Code code, Positions where) {
  codes.push_back(code);
  counts.push_back(static_cast<std::uint32_t>(where.count));
  if (starts.empty()) starts.push_back(0);
  positions.insert(positions.end(), where.begin(), where.end());
  starts.push_back(static_cast<std::uint32_t>(positions.size()));
}

Positions Known(Positions positions) {
  if (positions.count == 0 || *positions.first != 0) return positions;
  const Position* const first = std::upper_bound(positions.begin(), positions.end(), Position{0});
  return {first, static_cast<std::size_t>(positions.end() - first)};
}

Positions PositionReader::OfMany(const Occurrences& found, std::size_t index) {
  if (found.record.view().empty()) {
    const std::uint32_t start = found.starts[index];
    return {found.positions.data() + start, found.starts[index + 1] - start};
  }
  const EncodedPositions encoded(found.record.view().data() + found.starts[index],
                                 found.counts[index]);
  const std::size_t count = encoded.size();
  if (copy_.size() < count) copy_.resize(count);
  Position* const copy = copy_.data();
  unsigned falls = 0;
  Position previous = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Position position = encoded[i];
    falls |= static_cast<unsigned>(position < previous);
    previous = copy[i] = position;
  }
  if (falls != 0) std::sort(copy, copy + count);  // after 65535 comes 1 again
  return {copy, count};
}

}  // namespace kestan::search
