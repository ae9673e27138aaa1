#include "search/matching/matches.h"

#include <algorithm>

namespace kestan::search {

void Occurrences::Append(Code code, Positions where) {
  codes.push_back(code);
  counts.push_back(static_cast<std::uint32_t>(where.count));
  if (starts.empty()) starts.push_back(0);
  positions.insert(positions.end(), where.begin(), where.end());
  starts.push_back(static_cast<std::uint32_t>(positions.size()));
}

Positions PositionReader::Of(const Occurrences& found, std::size_t index) {
  if (found.record.view().empty()) {
    const std::uint32_t start = found.starts[index];
    return {found.positions.data() + start, found.starts[index + 1] - start};
  }
  const EncodedPositions encoded(found.record.view().data() + found.starts[index],
                                 found.counts[index]);
  copy_.resize(encoded.size());
  bool is_ascending = true;
  Position previous = 0;
  for (std::size_t i = 0; i < copy_.size(); ++i) {
    const Position position = encoded[i];
    is_ascending &= previous <= position;
    previous = copy_[i] = position;
  }
  // After 65535 comes 1 again.
  if (!is_ascending) std::sort(copy_.begin(), copy_.end());
  return {copy_.data(), copy_.size()};
}

}  // namespace kestan::search
