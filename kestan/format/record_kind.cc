// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/record_kind.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/posting_list.h>
#include <kestan/text/white_space.h>

#include <algorithm>
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
  return value.size == kDocumentRecordBytes && DocumentPadding(value) == 0;
}

bool HasNul(const DBDatum& value) { return BytesOf(value).find('\0') != std::string_view::npos; }

// With positions, the shape says enough without the counter, which may be what is damaged.
bool IsShapedLikePostings(const DBDatum& value, const PostingRules& rules) {
  if (rules.with_positions) return LooksLikePostings(value, {true, kMaxCode});
  return LooksLikePostings(value, rules) || LooksLikeMixedPostings(value);
}

// Returns whether the record, which is shaped like postings, can be of the family of its key.
bool CanBeOfFamily(RecordKind family, std::string_view key, const DBDatum& value,
                   const PostingRules& rules) {
  switch (family) {
    case RecordKind::kDocument:
      return LooksLikeDocument(value);
    case RecordKind::kName:
      return key.size() == kNameKeyBytes && !HasNul(value) &&
             CodeOfNameKey(AsDatum(key)) <= rules.highest;
    case RecordKind::kWordList:
      return !HasNul(value) && (value.data[0] & 0x80) != 0;
    case RecordKind::kOther:
      return false;
    default:
      return !HasNul(value);
  }
}

// No name has the key "c-". A damaged document record with the key "d-" is taken for postings.
RecordKind KindOfTwoBytes(std::string_view key, const DBDatum* value, const PostingRules& rules) {
  const RecordKind family = Find(kFamilies, key);
  if (family == RecordKind::kOther || family == RecordKind::kName || value == nullptr) {
    return RecordKind::kPosting;
  }
  const bool is_document = family == RecordKind::kDocument;
  if (!is_document && !IsShapedLikePostings(*value, rules)) return family;
  return CanBeOfFamily(family, key, *value, rules) ? family : RecordKind::kPosting;
}

// Distinguishes a damaged posting record, whose first posting mostly makes sense, from a host's own
// text.
bool BeginsLikePostings(const DBDatum& value, const PostingRules& rules) {
  if (!rules.with_positions || !HasNul(value)) return false;
  PostingReader reader(value, true);
  Posting first{};
  if (!reader.Next(&first) || first.positions == 0) return false;
  return first.code != 0 && first.code <= rules.highest;
}

RecordKind KindOfFamily(std::string_view key, const DBDatum& value, const PostingRules& rules) {
  const RecordKind family = Find(kFamilies, key.substr(0, kFamilyBytes));
  if (!CanBeWord(key)) return family;
  if (IsShapedLikePostings(value, rules)) {
    return CanBeOfFamily(family, key, value, rules) ? family : RecordKind::kPosting;
  }
  const bool is_damaged_word = family == RecordKind::kOther && BeginsLikePostings(value, rules);
  return is_damaged_word ? RecordKind::kPosting : family;
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
  Posting posting;
  while (reader.Next(&posting)) {
    if (posting.code == 0 || posting.code > rules.highest) return false;
    if (!rules.with_positions) continue;
    if (posting.positions == 0) return false;
    if (UnitAt(value, posting.first_unit + 1) != posting.positions) return false;
    for (std::size_t i = kUnitsBeforePositions; i < posting.units; ++i) {
      if (UnitAt(value, posting.first_unit + i) == 0) return false;
    }
  }
  return true;
}

bool LooksLikeMixedPostings(const DBDatum& value) {
  constexpr std::size_t kSmallestUnits = kUnitsBeforePositions + 1;
  const std::size_t units = value.size / kUnitBytes;
  if (value.size % kUnitBytes != 0 || units < kSmallestUnits) return false;
  for (std::size_t unit = 0; unit < units; ++unit) {
    if (UnitAt(value, unit) == 0) return false;
  }
  return UnitAt(value, 1) <= units - kUnitsBeforePositions;
}

bool CanBeWord(std::string_view key) {
  return !key.empty() && std::none_of(key.begin(), key.end(),
                                      [](char byte) { return byte == '\0' || IsWhiteSpace(byte); });
}

RecordKind KindOf(const DBDatum& key, const DBDatum* value, const PostingRules& rules) {
  const std::string_view bytes = BytesOf(key);
  if (!HasFamilyMark(bytes)) return RecordKind::kPosting;
  if (bytes.size() == kFamilyBytes) return KindOfTwoBytes(bytes, value, rules);
  const RecordKind single = Find(kSingleRecords, bytes);
  if (single != RecordKind::kOther) return single;
  return value == nullptr ? Find(kFamilies, bytes.substr(0, kFamilyBytes))
                          : KindOfFamily(bytes, *value, rules);
}

}  // namespace kestan
