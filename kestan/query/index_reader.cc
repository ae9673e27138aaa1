#include <kestan/query/index_reader.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/record_kind.h>
#include <kestan/query/name_table.h>
#include <kestan/storage/memory.h>
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

// The codes of "g-deleted", as they were at some number of changes of the store.
struct IndexReader::RemovedCodes {
  bool is_read = false;
  std::uint64_t changes = 0;
  CodeSet codes;
};

IndexReader::IndexReader(Database& store)
    : store_(store), names_(New<NameTable>()), removed_(New<RemovedCodes>()) {}

IndexReader::~IndexReader() = default;

CollectionCounts IndexReader::Counts() {
  CollectionCounts counts;
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

bool IndexReader::KeepsPositions() { return (OptionFlags().value_or(0) & kFlagNoPositions) == 0; }

std::string_view IndexReader::NameOf(Code code) {
  names_->Refresh(store_);
  return names_->Find(store_, code, &long_name_);
}

Code IndexReader::CodeOf(std::string_view name) {
  const DBDatumPtr record = Fetch(store_, ItemKey(kDocumentFamily, name));
  return record.ptr != nullptr ? DocumentCode(*record.ptr) : Code{0};
}

std::uint32_t IndexReader::TimestampOf(std::string_view name) {
  const DBDatumPtr record = Fetch(store_, ItemKey(kDocumentFamily, name));
  return record.ptr != nullptr ? DocumentTimestamp(*record.ptr) : 0;
}

bool IndexReader::IsRemoved(Code code) {
  if (!removed_->is_read || removed_->changes != store_.Changes()) {
    const DBDatumPtr removed = Fetch(store_, kDeletedKey);
    removed_->codes.reset();
    if (removed.ptr != nullptr) CollectCodes(*removed.ptr, &removed_->codes);
    removed_->changes = store_.Changes();
    removed_->is_read = true;
  }
  return removed_->codes[code];
}

DBDatumPtr IndexReader::FindSideRecord(SideRecord kind, std::string_view name) {
  return Fetch(store_, ItemKey(FamilyOf(kind), name));
}

int IndexReader::ForEachDocument(const std::function<bool(std::string_view name)>& visit) {
  RecordIterator record(store_, WalkOptions::BoundedMemory());
  int error = 0;
  for (; record.Valid(); record.Next()) {
    const std::string_view key = BytesOf(record.key());
    if (!IsOfFamily(key, kDocumentFamily)) continue;
    if (record.error() != 0) error = record.error();
    if (!visit(key.substr(kDocumentFamily.size()))) return error;
  }
  return record.walk_error() != 0 ? record.walk_error() : error;
}

WordPostings IndexReader::FindWord(std::string_view word) {
  return {Fetch(store_, word), KeepsPositions()};
}

int IndexReader::ForEachWord(
    const std::function<bool(std::string_view word, const WordPostings& postings)>& visit) {
  const bool with_positions = KeepsPositions();
  RecordIterator record(store_, WalkOptions::BoundedMemory());
  int error = 0;
  for (; record.Valid(); record.Next()) {
    if (IsSystemKey(record.key())) continue;
    if (record.error() != 0) error = record.error();
    const WordPostings postings(record.value(), with_positions);
    if (!visit(BytesOf(record.key()), postings)) return error;
  }
  return record.walk_error() != 0 ? record.walk_error() : error;
}

}  // namespace kestan
