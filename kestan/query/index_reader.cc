// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/index_reader.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/record_kind.h>
#include <kestan/format/word_list.h>
#include <kestan/query/collection_lists.h>
#include <kestan/query/name_table.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/walk/record_iterator.h>

#include <algorithm>

namespace kestan {
namespace {

std::size_t CodesIn(Database& store, std::string_view key) {
  const DBDatumPtr codes = Fetch(store, key);
  return codes.ptr != nullptr ? CountCodes(*codes.ptr) : 0;
}

std::string_view FamilyOf(SideRecord kind) {
  switch (kind) {
    case SideRecord::kTitle:
      return kTitleFamily;
    case SideRecord::kSummary:
      return kSummaryFamily;
    case SideRecord::kUser:
      break;
  }
  return kUserFamily;
}

}  // namespace

// What has been read, for as long as the store does not change. Holds no record: one that is held
// would stay in the store's cache when another file is opened, and answer for that one.
struct IndexReader::Cache {
  const CodeSet& RemovedCodes(Database& store) {
    if (removed_codes_at == store.Changes()) return removed_codes;
    const DBDatumPtr removed = Fetch(store, kDeletedKey);
    removed_codes.reset();
    if (removed.ptr != nullptr) CollectCodes(*removed.ptr, &removed_codes);
    removed_codes_at = store.Changes();
    return removed_codes;
  }

  NameTable names;
  String long_name;  // what NameOf() returned last, if it is too long for the table
  CodeSet removed_codes;
  std::optional<std::uint64_t> removed_codes_at;  // changes of the store when they were read
};

IndexReader::IndexReader(Database& store) : store_(store), cache_(New<Cache>()) {}

IndexReader::~IndexReader() = default;

NameTable& IndexReader::names() { return cache_->names; }

DocumentCounts IndexReader::CountDocuments() {
  DocumentCounts counts;
  const DBDatumPtr counter = Fetch(store_, kCounterKey);
  counts.had_documents = counter.ptr != nullptr;
  if (counts.had_documents) counts.highest_code = DecodeCounter(*counter.ptr);
  counts.reusable_codes = CodesIn(store_, kAvailableKey);
  counts.removed_codes = CodesIn(store_, kDeletedKey);
  const std::size_t unused = counts.reusable_codes + counts.removed_codes;
  counts.documents = counts.highest_code - std::min<std::size_t>(counts.highest_code, unused);
  counts.free_codes = std::size_t{kMaxCode} - counts.highest_code + counts.reusable_codes;
  return counts;
}

std::optional<std::uint32_t> IndexReader::OptionFlags() {
  const DBDatumPtr options = Fetch(store_, kOptionsKey);
  if (options.ptr == nullptr) return std::nullopt;
  return DecodeOptions(*options.ptr);
}

bool IndexReader::KeepsPositions() { return kestan::KeepsPositions(OptionFlags().value_or(0)); }

std::string_view IndexReader::NameOf(Code code) {
  cache_->names.Refresh(store_);
  DBDatumPtr record;
  const std::string_view name = cache_->names.Find(store_, code, &record);
  if (record.ptr == nullptr || name.data() != record.ptr->data) return name;
  return cache_->long_name.assign(name);
}

Code IndexReader::CodeOf(std::string_view name) {
  const DBDatumPtr record = Fetch(store_, ItemKey(kDocumentFamily, name));
  return record.ptr != nullptr ? DocumentCode(*record.ptr) : Code{0};
}

std::uint32_t IndexReader::TimestampOf(std::string_view name) {
  const DBDatumPtr record = Fetch(store_, ItemKey(kDocumentFamily, name));
  return record.ptr != nullptr ? DocumentTimestamp(*record.ptr) : 0;
}

bool IndexReader::IsRemoved(Code code) { return cache_->RemovedCodes(store_)[code]; }

void IndexReader::ForEachRemovedCode(const std::function<bool(Code code)>& visit) {
  const CodeSet removed = cache_->RemovedCodes(store_);  // a copy: `visit` may change the index
  for (std::size_t code = 0; code < removed.size(); ++code) {
    if (removed[code] && !visit(static_cast<Code>(code))) return;
  }
}

DBDatumPtr IndexReader::FindSideRecord(SideRecord kind, std::string_view name) {
  return Fetch(store_, ItemKey(FamilyOf(kind), name));
}

StoreError IndexReader::ForEachDocument(const std::function<bool(std::string_view name)>& visit) {
  RecordIterator record(store_, WalkOptions::BoundedMemory());
  int error = 0;
  for (; record.Valid(); record.Next()) {
    const std::string_view key = BytesOf(record.key());
    if (!IsOfFamily(key, kDocumentFamily)) continue;
    if (record.error() != 0) error = record.error();
    if (!visit(key.substr(kDocumentFamily.size()))) return StoreError{error};
  }
  return StoreError{record.walk_error() != 0 ? record.walk_error() : error};
}

WordPostings IndexReader::FindWord(std::string_view word) {
  return {Fetch(store_, word), KeepsPositions()};
}

StoreError IndexReader::ForEachWord(
    const std::function<bool(std::string_view word, const WordPostings& postings)>& visit) {
  const bool with_positions = KeepsPositions();
  RecordIterator record(store_, WalkOptions::BoundedMemory());
  int error = 0;
  for (; record.Valid(); record.Next()) {
    if (IsSystemKey(record.key())) continue;
    if (record.error() != 0) error = record.error();
    const WordPostings postings(record.value(), with_positions);
    if (!visit(BytesOf(record.key()), postings)) return StoreError{error};
  }
  return StoreError{record.walk_error() != 0 ? record.walk_error() : error};
}

StoreError IndexReader::ForEachCommonWord(
    FrequencyRange range,
    const std::function<bool(std::string_view word, std::size_t documents)>& visit) {
  const DBDatumPtr reusable = Fetch(store_, kAvailableKey);
  const int error = kestan::ForEachCommonWord(
      store_, reusable.ptr != nullptr ? *reusable.ptr : DBDatum(), KeepsPositions(), range, visit);
  return StoreError{error};
}

bool IndexReader::ForEachListedWord(std::string_view name,
                                    const std::function<void(std::string_view word)>& visit) {
  const DBDatumPtr list = Fetch(store_, ItemKey(kWordListFamily, name));
  if (list.ptr == nullptr) return false;
  kestan::ForEachListedWord(*list.ptr, visit);
  return true;
}

}  // namespace kestan
