#include <kestan/maintenance/posting_repair.h>

#include <algorithm>
#include <limits>

namespace kestan {
namespace {

constexpr std::size_t kEntryHeadUnits = 2;  // code and number of positions

}  // namespace

bool PostingRepair::Read(const DBDatum& record) {
  if (ReadsWhole(record)) return true;
  entries_.clear();
  ReadAround(record);
  return false;
}

bool PostingRepair::ReadsWhole(const DBDatum& record) {
  entries_.clear();
  if (record.size % kUnitBytes != 0) return false;
  PostingReader reader(record, rules_.with_positions);
  PostingEntry entry;
  while (reader.Next(&entry)) {
    if (entry.code == 0 || entry.code > rules_.highest) return false;
    entries_.push_back(entry);
    if (!rules_.with_positions) continue;
    const std::size_t first = entry.first_unit + kEntryHeadUnits;
    if (entry.positions == 0 || UnitAt(record, first - 1) != entry.positions) return false;
    if (!IsAscending(record, first, entry.positions) && !wrapping_[entry.code]) return false;
  }
  return true;
}

bool PostingRepair::IsAscending(const DBDatum& record, std::size_t first, std::size_t count) const {
  Position previous = 0;
  for (std::size_t i = first; i < first + count; ++i) {
    const Position position = UnitAt(record, i);
    if (position <= previous) return false;
    previous = position;
  }
  return true;
}

// Goes from the end to the start, so that what an entry leads to is known where it begins.
void PostingRepair::ReadAround(const DBDatum& record) {
  const std::size_t units = record.size / kUnitBytes;
  ascending_.resize(units);
  covered_.resize(units + 1);
  covered_[units] = 0;
  for (std::size_t unit = units; unit-- > 0;) {
    constexpr std::uint16_t kMost = std::numeric_limits<std::uint16_t>::max();
    const bool goes_on = unit + 1 < units && UnitAt(record, unit) < UnitAt(record, unit + 1);
    const unsigned more = goes_on ? ascending_[unit + 1] : 0;
    ascending_[unit] = static_cast<std::uint16_t>(std::min<unsigned>(more + 1, kMost));
    covered_[unit] = covered_[unit + 1];
    if (!IsEntry(record, unit)) continue;
    const std::size_t taken =
        rules_.with_positions ? kEntryHeadUnits + UnitAt(record, unit + 1) : std::size_t{1};
    const auto with_entry = static_cast<std::uint32_t>(covered_[unit + taken] + taken);
    covered_[unit] = std::max(covered_[unit], with_entry);
  }
  for (std::size_t unit = 0; unit < units;) {
    if (covered_[unit] == covered_[unit + 1]) {
      ++unit;
      continue;
    }
    const std::uint16_t count = rules_.with_positions ? UnitAt(record, unit + 1) : std::uint16_t{0};
    const std::size_t taken = rules_.with_positions ? kEntryHeadUnits + count : std::size_t{1};
    entries_.push_back({unit, taken, UnitAt(record, unit), count});
    unit += taken;
  }
}

bool PostingRepair::IsEntry(const DBDatum& record, std::size_t unit) const {
  const Code code = UnitAt(record, unit);
  if (code == 0 || code > rules_.highest) return false;
  if (!rules_.with_positions) return true;
  const std::size_t units = record.size / kUnitBytes;
  const std::size_t first = unit + kEntryHeadUnits;
  if (first >= units) return false;
  const std::size_t count = UnitAt(record, unit + 1);
  return count != 0 && count <= units - first && UnitAt(record, first) != 0 &&
         ascending_[first] >= count;
}

}  // namespace kestan
