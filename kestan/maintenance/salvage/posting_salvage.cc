// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/posting_salvage.h>

#include <algorithm>
#include <limits>

namespace kestan {
namespace {

std::size_t EndOf(const WholePosting& posting) { return AsPosting(posting).end_unit(); }

}  // namespace

bool PostingSalvage::Read(const DBDatum& record, bool may_be_old) {
  if (ReadsWhole(record, may_be_old)) return true;
  const std::size_t valid_units = postings_.empty() ? 0 : EndOf(postings_.back());
  ReadAround(record, valid_units);
  return false;
}

// Stops at the first posting that is not valid.
bool PostingSalvage::ReadsWhole(const DBDatum& record, bool may_be_old) {
  const std::size_t smallest_units = rules_.with_positions ? kUnitsBeforePositions + 1 : 1;
  postings_.clear();
  postings_.reserve(record.size / kUnitBytes / smallest_units);
  PostingReader reader(record, rules_.with_positions);
  Posting posting;
  while (reader.Next(&posting)) {
    if (!IsValid(record, posting, may_be_old)) return false;
    postings_.push_back(
        {static_cast<std::uint32_t>(posting.first_unit), posting.code, posting.positions});
  }
  return !HasOddByte(record);
}

bool PostingSalvage::IsValid(const DBDatum& record, const Posting& posting, bool may_be_old) const {
  if (!IsPossible(posting.code)) return false;
  if (!rules_.with_positions) return true;
  const std::size_t first = posting.first_unit + kUnitsBeforePositions;
  if (posting.positions == 0 || StatedPositions(record, posting) != posting.positions) return false;
  return IsAscending(record, first, posting.positions, may_be_old || long_documents_[posting.code]);
}

bool PostingSalvage::IsAscending(const DBDatum& record, std::size_t first, std::size_t count,
                                 bool wraps) {
  Position previous = 0;
  for (std::size_t i = first; i < first + count; ++i) {
    const Position position = UnitAt(record, i);
    if (position == 0 || (position <= previous && !wraps)) return false;
    previous = position;
  }
  return true;
}

// Reads what follows the valid postings. Goes from the end to the start, so that the score of what
// follows a posting is known already.
void PostingSalvage::ReadAround(const DBDatum& record, std::size_t from) {
  const std::size_t units = record.size / kUnitBytes;
  ascending_.resize(units);
  score_.resize(units + 1);
  score_[units] = 0;
  for (std::size_t unit = units; unit-- > from;) {
    constexpr std::uint16_t kMost = std::numeric_limits<std::uint16_t>::max();
    const bool goes_on = unit + 1 < units && UnitAt(record, unit) < UnitAt(record, unit + 1);
    const unsigned more = goes_on ? ascending_[unit + 1] : 0;
    ascending_[unit] = static_cast<std::uint16_t>(std::min<unsigned>(more + 1, kMost));
    score_[unit] = score_[unit + 1];
    const std::size_t taken = UnitsAt(record, unit);
    if (taken != 0) {
      score_[unit] = std::max(score_[unit], score_[unit + taken] + ScoreOf(record, unit, taken));
    }
  }
  for (std::size_t unit = from; unit < units;) {
    const std::size_t taken = score_[unit] != score_[unit + 1] ? UnitsAt(record, unit) : 0;
    const Code code = UnitAt(record, unit);
    if (taken != 0 && IsPossible(code)) {
      const std::size_t head = rules_.with_positions ? kUnitsBeforePositions : 1;
      postings_.push_back(
          {static_cast<std::uint32_t>(unit), code, static_cast<std::uint16_t>(taken - head)});
    }
    unit += std::max<std::size_t>(taken, 1);
  }
}

// Returns how many units the posting has that begins at `unit`; 0 if none can begin there. Ignores
// its code: even with a damaged one, the posting shows where the next begins.
std::size_t PostingSalvage::UnitsAt(const DBDatum& record, std::size_t unit) const {
  if (!rules_.with_positions) return 1;
  const std::size_t units = record.size / kUnitBytes;
  const std::size_t first = unit + kUnitsBeforePositions;
  if (first >= units) return 0;
  const std::size_t count = UnitAt(record, unit + 1);
  const bool is_posting = count != 0 && count <= units - first && UnitAt(record, first) != 0 &&
                          ascending_[first] >= count;
  return is_posting ? kUnitsBeforePositions + count : 0;
}

// The rest of a damaged posting may look like the head of a longer one that includes the next. So
// two postings score more than one of as many units.
std::uint32_t PostingSalvage::ScoreOf(const DBDatum& record, std::size_t unit,
                                      std::size_t taken) const {
  constexpr std::size_t kWorthOfPosting = 3;
  const bool is_possible = IsPossible(UnitAt(record, unit));
  return static_cast<std::uint32_t>(is_possible ? taken + kWorthOfPosting : taken - 1);
}

}  // namespace kestan
