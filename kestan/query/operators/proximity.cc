// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/operators/proximity.h>

#include <algorithm>
#include <cstddef>

namespace kestan {
namespace {

constexpr int kCloseWords = 20;  // pairs up to this far apart earn a bonus
constexpr int kClosestBonus = 401;
constexpr std::size_t kMaxPositions = kMaxPosition;  // of one document
constexpr std::size_t kFewPairs = 8;                 // not worth a look at their order
constexpr std::size_t kManyPairs = 65536;            // worth a table of all positions
constexpr int kLastPosition = kMaxPosition;

// Known, and each higher than the one before: what indexing writes, up to 65535 words a document.
bool AreAscending(Positions positions) {
  Position previous = 0;
  for (const Position position : positions) {
    if (position <= previous) return false;
    previous = position;
  }
  return true;
}

// What two words so far apart earn, if they are close.
std::uint32_t BonusOf(int difference) {
  return static_cast<std::uint32_t>(kClosestBonus - difference * difference);
}

bool IsUnknown(Positions positions) { return positions.count == 1 && *positions.first == 0; }

}  // namespace

void ProximityMatcher::Match(Positions first, Positions second) {
  kept_.clear();
  bonus_ = 0;
  if (IsUnknown(first)) return KeepAll(second);
  if (IsUnknown(second)) return KeepAll(first);
  const std::uint64_t pairs = std::uint64_t{first.count} * second.count;
  if (pairs > kFewPairs && AreAscending(first) && AreAscending(second)) {
    MatchAscending(first, second);
  } else if (pairs > kManyPairs) {
    MatchByTable(first, second);
  } else {
    MatchAllPairs(first, second);
  }
}

// What a position that is not known leaves of the other word's.
void ProximityMatcher::KeepAll(Positions positions) {
  found_ = positions;
  if (positions.count <= 1 || AreAscending(positions)) return;
  for (const Position position : positions) Keep(position);
  SortKept();
}

void ProximityMatcher::MatchAllPairs(Positions first, Positions second) {
  for (const Position a : first) {
    for (const Position b : second) MatchPair(a, b);
  }
  SortKept();
}

void ProximityMatcher::MatchPair(Position a, Position b) {
  if (b == 0) return Keep(a);
  if (a == 0) return Keep(b);
  if (!IsInReach(b - a)) return;
  AddBonus(b - a);
  Keep(b);
}

void ProximityMatcher::Keep(Position position) {
  if (seen_[position]) return;
  seen_.set(position);
  kept_.push_back(position);
}

void ProximityMatcher::SortKept() {
  std::sort(kept_.begin(), kept_.end());
  for (const Position position : kept_) seen_.reset(position);
  found_ = {kept_.data(), std::min(kept_.size(), kMaxPositions)};
}

// One pass over both: no more than 41 of the first word's positions are close to one of the
// second's.
void ProximityMatcher::MatchAscending(Positions first, Positions second) {
  const Position* close = first.begin();  // the first one that can earn a bonus with b, or after it
  const Position* near = first.begin();   // the first one in reach of b, or after it
  for (const Position b : second) {
    AddBonuses(first, b, &close);
    if (distance_ != 0 && HasNear(first, b, &near)) kept_.push_back(b);
  }
  found_ = distance_ == 0 ? second : Positions{kept_.data(), kept_.size()};
}

void ProximityMatcher::AddBonuses(Positions first, int b, const Position** close) {
  while (*close != first.end() && **close < b - kCloseWords) ++*close;
  for (const Position* a = *close; a != first.end() && *a <= b + kCloseWords; ++a) {
    if (IsInReach(b - *a)) AddBonus(b - *a);
  }
}

bool ProximityMatcher::HasNear(Positions first, int b, const Position** near) const {
  while (*near != first.end() && **near < b - distance_) ++*near;
  const Position* const other = *near + (*near != first.end() && **near == b ? 1 : 0);
  return other != first.end() && *other <= b + distance_;
}

// Positions in any order, some of them many times over: each of the second word's is looked at with
// its surroundings in a table of the first's.
void ProximityMatcher::MatchByTable(Positions first, Positions second) {
  Tabulate(first);
  const bool has_unknown = std::find(first.begin(), first.end(), 0) != first.end();
  for (const Position b : second) {
    if (b == 0) continue;
    bonus_ += BonusesAt(b);
    if (distance_ == 0 || has_unknown || HasNearInTable(b)) Keep(b);
  }
  if (std::find(second.begin(), second.end(), 0) != second.end()) {
    for (const Position a : first) Keep(a);
  }
  SortKept();
}

void ProximityMatcher::Tabulate(Positions first) {
  times_.assign(kLastPosition + 1, 0);
  for (const Position a : first) ++times_[a];
  times_[0] = 0;  // what is not known is close to nothing
  up_to_.assign(times_.size(), 0);
  for (std::size_t i = 1; i < times_.size(); ++i) {
    up_to_[i] = up_to_[i - 1] + (times_[i] != 0 ? 1 : 0);
  }
}

// What all pairs of `b` earn, modulo 2^32.
std::uint32_t ProximityMatcher::BonusesAt(int b) const {
  std::uint32_t bonuses = 0;
  for (int a = std::max(b - kCloseWords, 1); a <= std::min(b + kCloseWords, kLastPosition); ++a) {
    const std::uint32_t times = times_[static_cast<Position>(a)];
    if (times != 0 && IsInReach(b - a)) bonuses += times * BonusOf(b - a);
  }
  return bonuses;
}

bool ProximityMatcher::HasNearInTable(int b) const {
  if (distance_ < 0) return false;
  const std::int64_t first = std::max<std::int64_t>(b - distance_, 1);
  const std::int64_t last = std::min<std::int64_t>(b + distance_, kLastPosition);
  const std::uint32_t same = times_[static_cast<Position>(b)] != 0 ? 1 : 0;
  return up_to_[static_cast<Position>(last)] - up_to_[static_cast<Position>(first - 1)] > same;
}

void ProximityMatcher::AddBonus(int difference) {
  if (difference >= -kCloseWords && difference <= kCloseWords) bonus_ += BonusOf(difference);
}

bool ProximityMatcher::IsInReach(std::int64_t difference) const {
  if (distance_ == 0) return true;
  return difference != 0 && -distance_ <= difference && difference <= distance_;
}

}  // namespace kestan
