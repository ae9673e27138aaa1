// SPDX-License-Identifier: GPL-3.0-or-later
// Matching the positions of two words in one document.
#ifndef KESTAN_QUERY_OPERATORS_PROXIMITY_H_
#define KESTAN_QUERY_OPERATORS_PROXIMITY_H_

#include <kestan/query/result_set.h>
#include <kestan/storage/memory/memory.h>

#include <bitset>
#include <cstdint>

namespace kestan {

// Finds the positions of the second word that are near enough to the first, and the bonus that the
// pairs earn: each pair of words d places apart, d up to 20, adds 401 - d * d.
class ProximityMatcher {
 public:
  // `distance` is how far apart the words of a pair may be, in either order; the same place does
  // not count. 0: any distance, the same place too. Below 0: none.
  explicit ProximityMatcher(int distance) : distance_(distance) {}

  // Matches the positions of two words in one document. A position of 0 is not known: it matches
  // every other, earns no bonus, and the other one is found.
  void Match(Positions first, Positions second);

  // The positions that the last Match() found, ascending; as many as a document can have. Valid
  // until the next Match(), while what that one was given is.
  Positions found() const { return found_; }

  // What the pairs of the last Match() earned, modulo 2^32.
  std::uint32_t bonus() const { return bonus_; }

 private:
  void KeepAll(Positions positions);
  void MatchAllPairs(Positions first, Positions second);
  void MatchPair(Position a, Position b);
  void Keep(Position position);
  void SortKept();
  void MatchAscending(Positions first, Positions second);
  void MatchByTable(Positions first, Positions second);
  void Tabulate(Positions first);
  std::uint32_t BonusesAt(int b) const;
  bool HasNearInTable(int b) const;
  void AddBonuses(Positions first, int b, const Position** close);
  bool HasNear(Positions first, int b, const Position** near) const;
  void AddBonus(int difference);
  bool IsInReach(std::int64_t difference) const;

  const std::int64_t distance_;  // in 64 bits, for the least int has no counterpart in 32
  std::bitset<65536> seen_;
  Vector<Position> kept_;
  Vector<std::uint32_t> times_;  // how often the first word has each known position
  Vector<std::uint32_t> up_to_;  // how many different ones it has up to each
  Positions found_{nullptr, 0};
  std::uint32_t bonus_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_QUERY_OPERATORS_PROXIMITY_H_
