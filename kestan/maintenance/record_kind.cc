#include <kestan/engine/keys.h>
#include <kestan/maintenance/record_kind.h>

#include <array>
#include <utility>

namespace kestan {
namespace {

using NamedKind = std::pair<std::string_view, RecordKind>;

constexpr std::array<NamedKind, 4> kSingleRecords{{{kCounterKey, RecordKind::kCounter},
                                                   {kAvailableKey, RecordKind::kReusableCodes},
                                                   {kDeletedKey, RecordKind::kRemovedCodes},
                                                   {kOptionsKey, RecordKind::kOptions}}};

constexpr std::array<NamedKind, 6> kFamilies{{{kDocumentFamily, RecordKind::kDocument},
                                              {kNameFamily, RecordKind::kName},
                                              {kTitleFamily, RecordKind::kTitle},
                                              {kSummaryFamily, RecordKind::kSummary},
                                              {kUserFamily, RecordKind::kUser},
                                              {kWordListFamily, RecordKind::kWordList}}};

template <std::size_t kCount>
RecordKind Find(const std::array<NamedKind, kCount>& kinds, std::string_view name) {
  for (const auto& [known, kind] : kinds) {
    if (known == name) return kind;
  }
  return RecordKind::kOther;
}

// A posting record of 8 bytes ends with a position or a code, and neither is 0.
bool LooksLikeDocument(const DBDatum& value) {
  return value.size == kDocumentRecordBytes && UnitAt(value, 3) == 0;
}

RecordKind KindOfTwoBytes(std::string_view key, const DBDatum* value, const PostingRules& rules) {
  const RecordKind family = Find(kFamilies, key);
  if (family == RecordKind::kOther || family == RecordKind::kName || value == nullptr) {
    return RecordKind::kPosting;
  }
  const bool is_family = family == RecordKind::kDocument ? LooksLikeDocument(*value)
                                                         : !LooksLikePostings(*value, rules);
  return is_family ? family : RecordKind::kPosting;
}

}  // namespace

PostingRules ReadPostingRules(Database& store) {
  PostingRules rules;
  const DBDatumPtr flags = Fetch(store, kOptionsKey);
  const DBDatumPtr counter = Fetch(store, kCounterKey);
  if (flags.ptr != nullptr) {
    rules.with_positions = (DecodeOptions(*flags.ptr) & kFlagNoPositions) == 0;
  }
  if (counter.ptr != nullptr) rules.highest = DecodeCounter(*counter.ptr);
  return rules;
}

bool LooksLikePostings(const DBDatum& value, const PostingRules& rules) {
  if (value.size == 0 || value.size % kUnitBytes != 0) return false;
  PostingReader reader(value, rules.with_positions);
  PostingEntry entry;
  while (reader.Next(&entry)) {
    if (entry.code == 0 || entry.code > rules.highest) return false;
    if (!rules.with_positions) continue;
    if (entry.units < 3 || UnitAt(value, entry.first_unit + 1) != entry.positions) return false;
    for (std::size_t i = 2; i < entry.units; ++i) {
      if (UnitAt(value, entry.first_unit + i) == 0) return false;
    }
  }
  return true;
}

RecordKind KindOf(const DBDatum& key, const DBDatum* value, const PostingRules& rules) {
  const std::string_view bytes = BytesOf(key);
  if (bytes.size() < 2 || bytes[1] != '-') return RecordKind::kPosting;
  if (bytes.size() == 2) return KindOfTwoBytes(bytes, value, rules);
  const RecordKind single = Find(kSingleRecords, bytes);
  return single != RecordKind::kOther ? single : Find(kFamilies, bytes.substr(0, 2));
}

}  // namespace kestan
