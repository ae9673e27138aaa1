// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/operators/matches.h"

#include <endian.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

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

namespace {

using Block = std::array<Position, kLanes>;

Block ReadBlock(const char* bytes) {
  Block block;
  std::memcpy(block.data(), bytes, sizeof block);
  for (Position& position : block) position = le16toh(position);
  return block;
}

// Copies the `count` positions at the start of `bytes`, and pads them, block by block.
//   Returns  false if they do not ascend, or less than a block is behind them.
bool CopyBlocks(std::string_view bytes, std::size_t count, Position* copy) {
  if (bytes.size() < (count + kLanes) * sizeof(Position)) return false;
  const Position last = EncodedPositions(bytes.data(), count)[count - 1];
  Block falls{};
  for (std::size_t i = 0; i < count; i += kLanes) {
    const auto rest = static_cast<Position>(std::min(count - i, kLanes));
    Block block = ReadBlock(bytes.data() + i * sizeof(Position));
    const Block next = ReadBlock(bytes.data() + (i + 1) * sizeof(Position));
    for (Position lane = 0; lane < kLanes; ++lane) {
      const Position read = block[lane];
      const Position follows = next[lane];
      const Position position = lane < rest ? read : last;
      const Position follower = lane + 1 < rest ? follows : last;
      falls[lane] = static_cast<Position>(falls[lane] | (position > follower ? 1 : 0));
      block[lane] = position;
    }
    std::memcpy(copy + i, block.data(), sizeof block);
  }
  return falls == Block{};
}

// Copies the `count` positions at the start of `bytes` in ascending order.
void CopySorted(std::string_view bytes, std::size_t count, Position* copy) {
  const EncodedPositions encoded(bytes.data(), count);
  std::copy(encoded.begin(), encoded.end(), copy);
  if (!std::is_sorted(copy, copy + count)) std::sort(copy, copy + count);  // after 65535 comes 1
}

}  // namespace

PaddedPositions PositionReader::Of(const Occurrences& found, std::size_t index) {
  const std::string_view record = found.record.view();
  const std::size_t start = found.starts[index];
  const std::size_t count = record.empty() ? found.starts[index + 1] - start : found.counts[index];
  PaddedPositions read{{nullptr, count}};
  if (copy_.size() < read.padded()) copy_.resize(read.padded());
  Position* const copy = copy_.data();
  read.first = copy;
  if (record.empty()) {
    const Position* const first = found.positions.data() + start;
    std::copy(first, first + count, copy);
  } else if (CopyBlocks(record.substr(start), count, copy)) {
    return read;
  } else {
    CopySorted(record.substr(start), count, copy);
  }
  if (count > 0) std::fill(copy + count, copy + read.padded(), copy[count - 1]);
  return read;
}

}  // namespace kestan::search
