#include <kestan/query/position_matcher.h>

#include <algorithm>
#include <cstddef>

namespace kestan {
namespace {

constexpr int kCloseWords = 20;  // pairs up to this far apart earn a bonus
constexpr int kClosestBonus = 401;
constexpr std::size_t kMaxPositions = 65535;  // of one document
constexpr std::size_t kFewPairs = 8;          // not worth a look at their order

// Known, and each higher than the one before: what indexing writes, up to 65535 words a document.
bool AreAscending(Positions positions) {
  Position previous = 0;
  for (const Position position : positions) {
    if (position <= previous) return false;
    previous = position;
  }
  return true;
}

}  // namespace

void PositionMatcher::Match(Positions first, Positions second) {
  found_.clear();
  bonus_ = 0;
  const bool few = first.count * second.count <= kFewPairs;
  if (!few && AreAscending(first) && AreAscending(second)) {
    MatchAscending(first, second);
  } else {
    MatchAllPairs(first, second);
  }
}

Positions PositionMatcher::found() const {
  return {found_.data(), std::min(found_.size(), kMaxPositions)};
}

void PositionMatcher::MatchAllPairs(Positions first, Positions second) {
  for (const Position a : first) {
    for (const Position b : second) MatchPair(a, b);
  }
  std::sort(found_.begin(), found_.end());
  for (const Position position : found_) seen_.reset(position);
}

void PositionMatcher::MatchPair(Position a, Position b) {
  if (b == 0) return Keep(a);
  if (a == 0) return Keep(b);
  if (!IsInReach(b - a)) return;
  AddBonus(b - a);
  Keep(b);
}

void PositionMatcher::Keep(Position position) {
  if (seen_[position]) return;
  seen_.set(position);
  found_.push_back(position);
}

// One pass over both: no more than 41 of the first word's positions are close to one of the
// second's.
void PositionMatcher::MatchAscending(Positions first, Positions second) {
  const Position* close = first.begin();  // the first one that is close to b, or after it
  const Position* after = first.begin();  // the first one above b
  for (const Position b : second) {
    while (close != first.end() && *close + kCloseWords < b) ++close;
    bool found = distance_ == 0;
    for (const Position* a = close; a != first.end() && *a <= b + kCloseWords; ++a) {
      if (!IsInReach(b - *a)) continue;
      AddBonus(b - *a);
      found = true;
    }
    while (after != first.end() && *after <= b) ++after;
    if (!found && after != first.end()) found = IsInReach(b - *after);
    const Position* const before = after - (after != first.begin() && after[-1] == b ? 1 : 0);
    if (!found && before != first.begin()) found = IsInReach(b - before[-1]);
    if (found) found_.push_back(b);
  }
}

void PositionMatcher::AddBonus(int difference) {
  if (difference < -kCloseWords || difference > kCloseWords) return;
  bonus_ += static_cast<std::uint32_t>(kClosestBonus - difference * difference);
}

bool PositionMatcher::IsInReach(std::int64_t difference) const {
  if (distance_ == 0) return true;
  return difference != 0 && -distance_ <= difference && difference <= distance_;
}

}  // namespace kestan
