// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/system_records.h>

#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/units.h>
#include <kestan/maintenance/repair/codes.h>
#include <kestan/maintenance/salvage/posting_salvage.h>

namespace kestan {
namespace {

// How many posting records have which shape. Short ones can have both.
struct ShapeCount {
  std::size_t records = 0;
  std::size_t with_positions = 0;
  std::size_t codes_alone = 0;
};

bool AreDistinctCodes(const DBDatum& value, CodesSeen* seen) {
  seen->StartRecord();
  for (std::size_t i = 0; i < CountCodes(value); ++i) {
    const Code code = CodeAt(value, i);
    if (code == 0 || !seen->Add(code)) return false;
  }
  return !HasOddByte(value);
}

// Records with a hyphen as the second byte of the key may be no words', and do not count.
ShapeCount CountShapes(const Salvage& salvage) {
  const PostingRules rules{true, kMaxCode};
  const CodeSet no_long_documents;
  PostingSalvage postings(rules, no_long_documents);
  CodesSeen seen;
  ShapeCount count;
  for (const SalvagedRecord& record : salvage.records()) {
    const std::string_view key = salvage.KeyOf(record);
    const DBDatum value = AsDatum(salvage.ValueOf(record));
    if (value.size == 0 || HasFamilyMark(key)) continue;
    ++count.records;
    if (postings.ReadsWhole(value)) ++count.with_positions;
    if (AreDistinctCodes(value, &seen)) ++count.codes_alone;
  }
  return count;
}

bool IsFlagWrong(bool with_positions, const ShapeCount& count) {
  constexpr std::size_t kMany = 10;
  const std::size_t nearly_all = count.records - count.records / 10;
  if (count.records < kMany) return false;
  return with_positions
             ? count.codes_alone >= nearly_all && count.with_positions * 2 < count.records
             : count.with_positions >= nearly_all && count.codes_alone < nearly_all;
}

std::optional<DBDatum> FirstBytes(const std::optional<DBDatum>& record, std::uint32_t bytes) {
  if (!record || record->size < bytes) return std::nullopt;
  return DBDatum(record->data, bytes);
}

}  // namespace

SystemRecords FindSystemRecords(const Salvage& salvage) {
  SystemRecords found;
  for (const SalvagedRecord& record : salvage.records()) {
    const std::string_view key = salvage.KeyOf(record);
    const DBDatum value = AsDatum(salvage.ValueOf(record));
    if (key == kCounterKey) found.counter = value;
    if (key == kOptionsKey) found.options = value;
    if (key == kAvailableKey) found.reusable = value;
    if (key == kDeletedKey) found.removed = value;
  }
  if (found.counter) found.counter_bytes_found = found.counter->size;
  if (found.options) found.options_bytes_found = found.options->size;
  found.counter = FirstBytes(found.counter, kUnitBytes);
  found.options = FirstBytes(found.options, kOptionsBytes);
  return found;
}

InferredOptions InferOptions(const Salvage& salvage, const SystemRecords& found) {
  const ShapeCount count = CountShapes(salvage);
  InferredOptions options;
  if (!found.options) {
    const bool with_positions = count.with_positions * 2 >= count.records;
    return {with_positions ? 0 : kFlagNoPositions, InferredOptions::Basis::kNoRecord};
  }
  options.flags = DecodeOptions(*found.options);
  if (!IsFlagWrong(options.with_positions(), count)) return options;
  return {options.flags ^ kFlagNoPositions, InferredOptions::Basis::kPostings};
}

}  // namespace kestan
