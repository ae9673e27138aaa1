#include <kestan/maintenance/repair/posting_repair.h>

#include <algorithm>
#include <limits>

namespace kestan {
namespace {

constexpr std::size_t kEntryHeadUnits = 2;  // code and number of positions

std::size_t EndOf(const WholePosting& entry) { return entry.first_unit + entry.units(); }

}  // namespace

bool PostingRepair::Read(const DBDatum& record, bool may_be_old) {
  if (ReadsWhole(record, may_be_old)) return true;
  const std::size_t sound_units = entries_.empty() ? 0 : EndOf(entries_.back());
  ReadAround(record, sound_units);
  return false;
}

// Stops at the first entry that makes no sense.
bool PostingRepair::ReadsWhole(const DBDatum& record, bool may_be_old) {
  const std::size_t smallest_units = rules_.with_positions ? kEntryHeadUnits + 1 : 1;
  entries_.clear();
  entries_.reserve(record.size / kUnitBytes / smallest_units);
  PostingReader reader(record, rules_.with_positions);
  Posting entry;
  while (reader.Next(&entry)) {
    if (!IsSound(record, entry, may_be_old)) return false;
    entries_.push_back({static_cast<std::uint32_t>(entry.first_unit), entry.code, entry.positions});
  }
  return record.size % kUnitBytes == 0;
}

bool PostingRepair::IsSound(const DBDatum& record, const Posting& entry, bool may_be_old) const {
  if (!IsPossible(entry.code)) return false;
  if (!rules_.with_positions) return true;
  const std::size_t first = entry.first_unit + kEntryHeadUnits;
  if (entry.positions == 0 || UnitAt(record, first - 1) != entry.positions) return false;
  return IsAscending(record, first, entry.positions, may_be_old || wrapping_[entry.code]);
}

bool PostingRepair::IsAscending(const DBDatum& record, std::size_t first, std::size_t count,
                                bool wraps) {
  Position previous = 0;
  for (std::size_t i = first; i < first + count; ++i) {
    const Position position = UnitAt(record, i);
    if (position == 0 || (position <= previous && !wraps)) return false;
    previous = position;
  }
  return true;
}

// Reads what is behind the entries that made sense. Goes from the end to the start, so that what an
// entry leads to is known where it begins.
void PostingRepair::ReadAround(const DBDatum& record, std::size_t from) {
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
      const std::size_t head = rules_.with_positions ? kEntryHeadUnits : 1;
      entries_.push_back(
          {static_cast<std::uint32_t>(unit), code, static_cast<std::uint16_t>(taken - head)});
    }
    unit += std::max<std::size_t>(taken, 1);
  }
}

// Returns how many units the entry has that begins at `unit`; 0 if none can. Its code is not looked
// at: one that is damaged still tells where the next entry begins.
std::size_t PostingRepair::UnitsAt(const DBDatum& record, std::size_t unit) const {
  if (!rules_.with_positions) return 1;
  const std::size_t units = record.size / kUnitBytes;
  const std::size_t first = unit + kEntryHeadUnits;
  if (first >= units) return 0;
  const std::size_t count = UnitAt(record, unit + 1);
  const bool is_entry = count != 0 && count <= units - first && UnitAt(record, first) != 0 &&
                        ascending_[first] >= count;
  return is_entry ? kEntryHeadUnits + count : 0;
}

// What is left of a damaged entry may look like the head of a longer one that takes in the next, so
// two entries are worth more than one of as many units.
std::uint32_t PostingRepair::ScoreOf(const DBDatum& record, std::size_t unit,
                                     std::size_t taken) const {
  constexpr std::size_t kWorthOfEntry = 3;
  const bool is_possible = IsPossible(UnitAt(record, unit));
  return static_cast<std::uint32_t>(is_possible ? taken + kWorthOfEntry : taken - 1);
}

}  // namespace kestan
