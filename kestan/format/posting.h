// What postings are made of.
#ifndef KESTAN_FORMAT_POSTING_H_
#define KESTAN_FORMAT_POSTING_H_

#include <cstddef>
#include <cstdint>
#include <limits>

namespace kestan {

// A document code stands for one document in all records; 0 stands for none.
using Code = std::uint16_t;
inline constexpr Code kMaxCode = std::numeric_limits<Code>::max();

// The place of a word in its document, counted from 1; after 65535 comes 1 again. 0: not known.
using Position = std::uint16_t;

// Positions of a word in one document, side by side in memory that somebody else owns.
struct Positions {
  const Position* begin() const { return first; }
  const Position* end() const { return first + count; }

  const Position* first;
  std::size_t count;
};

// The option flag of an index that keeps no positions: its posting records hold codes alone.
inline constexpr std::uint32_t kFlagNoPositions = 1;

// Returns whether an index with the option flags `flags` keeps positions.
constexpr bool KeepsPositions(std::uint64_t flags) { return (flags & kFlagNoPositions) == 0; }

}  // namespace kestan

#endif  // KESTAN_FORMAT_POSTING_H_
