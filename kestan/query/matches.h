// SPDX-License-Identifier: GPL-3.0-or-later
// A result set as values.
#ifndef KESTAN_QUERY_MATCHES_H_
#define KESTAN_QUERY_MATCHES_H_

#include <kestan/format/posting.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kestan {

using Score = std::uint16_t;
inline constexpr std::uint32_t kMaxScore = 65535;

// One document of a result set.
struct Match {
  Code code;
  Score score;          // how often the document holds the word, or what combining made of that
  Positions positions;  // where it matched; empty where that is not known
};

// The matches of one result set, in ascending order of their codes, removed documents among them.
// A view: it borrows what the set holds, which stays where it is until the set is freed. As in
// WordPostings, a match without positions is one whose positions are not known.
class Matches {
 public:
  // How a set keeps a match. Its positions lie in a block of units that all matches share: the
  // number of positions at `first`, then the positions. A single position 0 says that none is
  // known: operators take it for a position near every other.
  struct Entry {
    Code code;
    Score score;
    std::uint32_t first;
  };

  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Match;
    using difference_type = std::ptrdiff_t;
    using pointer = const Match*;
    using reference = Match;

    Iterator(const Matches* matches, std::size_t index) : matches_(matches), index_(index) {}
    Match operator*() const { return (*matches_)[index_]; }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator& other) const { return index_ == other.index_; }
    bool operator!=(const Iterator& other) const { return index_ != other.index_; }

   private:
    const Matches* matches_;
    std::size_t index_;
  };

  // No matches.
  Matches() = default;

  // Borrows `count` entries at `entries` and the units that their `first` counts in.
  Matches(const Entry* entries, std::size_t count, const std::uint16_t* units)
      : entries_(entries), count_(count), units_(units) {}

  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  Match operator[](std::size_t index) const {
    const Entry& entry = entries_[index];
    const std::uint16_t* const count = units_ + entry.first;
    const Position* const first = count + 1;
    const bool is_unknown = *count == 1 && *first == 0;
    return {entry.code, entry.score, {first, is_unknown ? std::size_t{0} : *count}};
  }
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, count_}; }

 private:
  const Entry* entries_ = nullptr;
  std::size_t count_ = 0;
  const std::uint16_t* units_ = nullptr;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_MATCHES_H_
