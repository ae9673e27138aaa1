// SPDX-License-Identifier: GPL-3.0-or-later
// What postings are made of.
#ifndef KESTAN_FORMAT_POSTING_H_
#define KESTAN_FORMAT_POSTING_H_

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>

namespace kestan {

// A document code stands for one document in all records; 0 stands for none.
using Code = std::uint16_t;
inline constexpr Code kMaxCode = std::numeric_limits<Code>::max();

// The place of a word in its document, counted from 1; after 65535 comes 1 again. 0: not known.
using Position = std::uint16_t;
inline constexpr Position kMaxPosition = std::numeric_limits<Position>::max();

// Positions of a word in one document, side by side in memory that somebody else owns.
struct Positions {
  const Position* begin() const { return first; }
  const Position* end() const { return first + count; }

  const Position* first;
  std::size_t count;
};

// Positions in the bytes of a posting record that somebody else owns: two bytes each, the lower
// first.
class EncodedPositions {
 public:
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Position;
    using difference_type = std::ptrdiff_t;
    using pointer = const Position*;
    using reference = Position;

    explicit Iterator(const char* bytes) : bytes_(bytes) {}
    Position operator*() const {
      const unsigned low = static_cast<unsigned char>(bytes_[0]);
      const unsigned high = static_cast<unsigned char>(bytes_[1]);
      return static_cast<Position>(low | high << 8);
    }
    Iterator& operator++() {
      bytes_ += sizeof(Position);
      return *this;
    }
    bool operator==(const Iterator& other) const { return bytes_ == other.bytes_; }
    bool operator!=(const Iterator& other) const { return bytes_ != other.bytes_; }

   private:
    const char* bytes_;
  };

  EncodedPositions() = default;

  // Borrows the bytes of `count` positions at `bytes`.
  EncodedPositions(const char* bytes, std::size_t count) : bytes_(bytes), count_(count) {}

  std::size_t size() const { return count_; }
  std::string_view bytes() const { return {bytes_, count_ * sizeof(Position)}; }
  Position operator[](std::size_t index) const {
    return *Iterator(bytes_ + index * sizeof(Position));
  }
  Iterator begin() const { return Iterator(bytes_); }
  Iterator end() const { return Iterator(bytes_ + count_ * sizeof(Position)); }

 private:
  const char* bytes_ = nullptr;
  std::size_t count_ = 0;
};

// The option flag of an index that keeps no positions: its posting records hold codes alone.
inline constexpr std::uint32_t kFlagNoPositions = 1;

// Returns whether an index with the option flags `flags` keeps positions.
constexpr bool KeepsPositions(std::uint64_t flags) { return (flags & kFlagNoPositions) == 0; }

}  // namespace kestan

#endif  // KESTAN_FORMAT_POSTING_H_
