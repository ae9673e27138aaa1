// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/salvaged_postings.h"

#include <algorithm>
#include <limits>

#include "search/files/numbers.h"

namespace kestan::search {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

// Returns whether the posting has as many positions as it says, and at least one.
bool IsWhole(const PostingCursor& cursor, bool with_positions) {
  if (!with_positions) return true;
  const std::size_t positions = cursor.positions().size();
  return positions > 0 &&
         NumberAt<std::uint16_t>(cursor.bytes().data() + sizeof(Code)) == positions;
}

bool ComesBefore(const SalvagedPosting& left, const SalvagedPosting& right) {
  return left.code < right.code;
}

// Returns for each posting whether it is one of the most that can stay so that codes ascend.
std::vector<bool> LongestAscent(const std::vector<SalvagedPosting>& postings) {
  std::vector<std::size_t> ends;  // by length: the ascent of that length with the lowest last code
  std::vector<std::size_t> previous(postings.size(), kNone);
  for (std::size_t i = 0; i < postings.size(); ++i) {
    const auto place =
        std::lower_bound(ends.begin(), ends.end(), i, [&](std::size_t left, std::size_t right) {
          return ComesBefore(postings[left], postings[right]);
        });
    if (place != ends.begin()) previous[i] = *(place - 1);
    if (place == ends.end()) {
      ends.push_back(i);
    } else {
      *place = i;
    }
  }
  std::vector<bool> is_in(postings.size());
  for (std::size_t i = ends.empty() ? kNone : ends.back(); i != kNone; i = previous[i]) {
    is_in[i] = true;
  }
  return is_in;
}

}  // namespace

bool LooksLikePostings(std::string_view record, bool with_positions) {
  const bool can_be = record.size() % sizeof(Code) == 0;
  if (!can_be || record.find('\0') == std::string_view::npos) return false;
  for (PostingCursor cursor(record, with_positions); cursor.Next();) {
    const EncodedPositions positions = cursor.positions();
    if (cursor.code() == 0 || !IsWhole(cursor, with_positions)) return false;
    if (std::find(positions.begin(), positions.end(), 0) != positions.end()) return false;
  }
  return true;
}

void SalvagedPostings::Clear() {
  postings_.clear();
  positions_.clear();
}

void SalvagedPostings::DoubtAll() {
  for (SalvagedPosting& posting : postings_) posting.is_doubted = true;
}

void SalvagedPostings::Add(Code code, bool is_doubted) {
  postings_.push_back({code, is_doubted, positions_.size(), 0});
}

bool SalvagedPostings::Read(std::string_view record, bool with_positions, Code highest) {
  Clear();
  bool is_sound = record.size() % sizeof(Code) == 0;
  Code last = 0;
  bool ascends = true;
  for (PostingCursor cursor(record, with_positions); cursor.Next();) {
    if (!IsWhole(cursor, with_positions)) {
      is_sound = false;
      break;
    }
    if (cursor.code() == 0 || cursor.code() > highest) {
      is_sound = false;
      continue;
    }
    ascends = ascends && cursor.code() > last;
    last = cursor.code();
    Add(cursor.code(), false);
    Position previous = 0;
    for (const Position position : cursor.positions()) {
      if (position <= previous) postings_.back().is_doubted = true;
      if (position == 0) is_sound = false;
      if (position != 0) AddPosition(position);
      previous = position;
    }
  }
  if (!ascends) PutInOrder(with_positions);
  return is_sound && ascends && !postings_.empty();
}

void SalvagedPostings::PutInOrder(bool with_positions) {
  const std::vector<bool> is_in_order = LongestAscent(postings_);
  Postings kept;
  for (std::size_t i = 0; i < postings_.size(); ++i) {
    if (!is_in_order[i] && !with_positions) continue;
    kept.push_back(postings_[i]);
    kept.back().is_doubted = kept.back().is_doubted || !is_in_order[i];
  }
  std::stable_sort(kept.begin(), kept.end(), ComesBefore);
  postings_ = std::move(kept);
}

}  // namespace kestan::search
