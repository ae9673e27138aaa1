// SPDX-License-Identifier: GPL-3.0-or-later
// What a query finds in one segment.
#ifndef KESTAN_SEARCH_MATCHING_OPERATORS_MATCHES_H_
#define KESTAN_SEARCH_MATCHING_OPERATORS_MATCHES_H_

#include <kestan/postings.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/files/file_bytes.h"

namespace kestan::search {

// What is asked of an operator. Each is more than the one before.
enum class Need { kCodes, kCounts, kPositions };

// Documents with how often something occurs in each, in ascending order of codes, each once, no
// removed ones. How often, and where, is kept only where it was asked for.
struct Occurrences {
  std::vector<Code> codes;
  std::vector<std::uint32_t> counts;  // empty, or as many as codes: how often; at least 1

  // Where, if positions were asked for. Of a term they stay where they are: those of codes[i] begin
  // at the byte starts[i] of `record`, and are counts[i]. Else `record` is empty, and they are
  // positions[starts[i]] up to positions[starts[i + 1]], in ascending order; 0 stands for anywhere.
  std::vector<std::uint32_t> starts;
  Bytes record;
  std::vector<Position> positions;

  std::size_t size() const { return codes.size(); }

  // Adds a document with positions, which are copied.
  void Append(Code code, Positions where);
};

// Reads the first position of each document, all of which must have been asked for.
class FirstPositions {
 public:
  // Borrows `found`.
  explicit FirstPositions(const Occurrences& found)
      : record_(found.record.view().data()),
        starts_(found.starts.data()),
        positions_(found.record.view().empty() ? found.positions.data() : nullptr) {}

  // Returns the first position in found.codes[index]; 0 if that may be anywhere.
  Position operator[](std::size_t index) const {
    if (positions_ != nullptr) return positions_[starts_[index]];
    return EncodedPositions(record_ + starts_[index], 1)[0];
  }

 private:
  const char* const record_;
  const std::uint32_t* const starts_;
  const Position* const positions_;  // null: they are in the record
};

// Returns the positions, which ascend, without those that may be anywhere: 0, before all others.
Positions Known(Positions positions);

// How many positions are worked on at once.
constexpr std::size_t kLanes = 8;

// Positions with repeats of the last one behind them, up to a multiple of kLanes.
struct PaddedPositions : Positions {
  std::size_t padded() const { return (count + kLanes - 1) / kLanes * kLanes; }
};

// Reads positions in ascending order. A document of more than 65535 words may hold one twice.
class PositionReader {
 public:
  // Returns the positions of found.codes[index], which must have been asked for. Lent until the
  // next call.
  PaddedPositions Of(const Occurrences& found, std::size_t index);

 private:
  std::vector<Position> copy_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_MATCHING_OPERATORS_MATCHES_H_
