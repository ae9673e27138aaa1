// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/format/units.h>
#include <kestan/maintenance/statistics.h>
#include <kestan/storage/walk/record_iterator.h>

#include <algorithm>

namespace kestan {
namespace {

constexpr std::uint64_t kBlockBytes = 512;
constexpr std::uint64_t kEmptyFileBytes = 4 * kBlockBytes;
constexpr std::uint64_t kBucketBytesPerRecord = 107;

// Returns the place of the class that a word of `documents` documents, at least 1, belongs to.
std::size_t FrequencyClassOf(std::uint64_t documents) {
  std::size_t place = 0;
  while (place + 1 < IndexStatistics::kFrequencyClasses &&
         (std::uint64_t{1} << place) < documents) {
    ++place;
  }
  return place;
}

// What a record of `bytes` takes in a file without free space. As many as fit lie in one block,
// and where the next does not fit, half a record is lost on the average; long ones begin a block.
std::uint64_t BytesInFile(std::uint64_t bytes) {
  const std::uint64_t packed = std::min(bytes, kBlockBytes);
  return bytes + kBucketBytesPerRecord + packed * packed / (2 * kBlockBytes);
}

class Counter {
 public:
  Counter(Database& store, IndexStatistics* statistics)
      : rules_(ReadPostingRules(store)), statistics_(*statistics) {
    const DBDatumPtr removed = Fetch(store, kDeletedKey);
    if (removed.ptr != nullptr) CollectCodes(*removed.ptr, &removed_);
    is_purged_ = removed.ptr != nullptr;
    removed_.set(0);  // a shrink that finds removed documents purges it too
  }

  void Visit(const DBDatum& key, const DBDatum& value) {
    const RecordKind kind = KindOf(key, &value, rules_);
    RecordBytes& bytes = BytesOfKind(kind);
    ++bytes.records;
    bytes.key_bytes += key.size;
    bytes.value_bytes += value.size;
    const std::uint64_t record_bytes = std::uint64_t{key.size} + value.size;
    const std::uint64_t purged_bytes = kind == RecordKind::kPosting ? CountWord(key, value) : 0;
    statistics_.record_bytes += record_bytes;
    statistics_.removed_posting_bytes += purged_bytes;
    statistics_.smallest_file_bytes += BytesInFile(record_bytes - purged_bytes);
    if (kind == RecordKind::kCounter) statistics_.highest_code = DecodeCounter(value);
    if (kind == RecordKind::kReusableCodes) statistics_.reusable_codes = CountCodes(value);
    if (kind == RecordKind::kRemovedCodes) statistics_.removed_codes = CountCodes(value);
    if (kind == RecordKind::kOptions) statistics_.option_flags = DecodeOptions(value);
  }

  void Finish() {
    IndexStatistics& all = statistics_;
    all.documents = all.document_records.records;
    all.smallest_file_bytes += kEmptyFileBytes;
    all.reclaimable_bytes = all.file_bytes - std::min(all.file_bytes, all.smallest_file_bytes);
  }

 private:
  RecordBytes& BytesOfKind(RecordKind kind) {
    switch (kind) {
      case RecordKind::kPosting:
        return statistics_.posting_records;
      case RecordKind::kDocument:
        return statistics_.document_records;
      case RecordKind::kName:
        return statistics_.name_records;
      case RecordKind::kTitle:
        return statistics_.titles;
      case RecordKind::kSummary:
        return statistics_.summaries;
      case RecordKind::kUser:
        return statistics_.user_records;
      case RecordKind::kWordList:
        return statistics_.word_lists;
      case RecordKind::kOther:
        return statistics_.other_records;
      case RecordKind::kCounter:
      case RecordKind::kReusableCodes:
      case RecordKind::kRemovedCodes:
      case RecordKind::kOptions:
        break;
    }
    return statistics_.system_records;
  }

  // Returns how many bytes of the record a shrink purges.
  std::uint64_t CountWord(const DBDatum& key, const DBDatum& value) {
    const bool is_purged = is_purged_ && !IsNeverPurged(key);
    std::uint64_t postings = 0;
    std::uint64_t purged_units = 0;
    PostingReader reader(value, rules_.with_positions);
    Posting posting;
    while (reader.Next(&posting)) {
      ++postings;
      statistics_.positions += posting.positions;
      if (is_purged && removed_[posting.code]) purged_units += posting.units;
    }
    AddWord(postings);
    return purged_units * kUnitBytes;
  }

  void AddWord(std::uint64_t postings) {
    ++statistics_.words;
    statistics_.postings += postings;
    if (postings == 0) {
      ++statistics_.unused;
      return;
    }
    FrequencyClass& frequency = statistics_.frequencies[FrequencyClassOf(postings)];
    ++frequency.words;
    frequency.postings += postings;
  }

  const PostingRules rules_;
  IndexStatistics& statistics_;
  CodeSet removed_;
  bool is_purged_ = false;
};

}  // namespace

IndexStatistics ReadStatistics(Database& store) {
  IndexStatistics statistics;
  if (store.Flush() == -1) {
    statistics.file_error = StoreError::kNotOpen;
    return statistics;
  }
  statistics.file_bytes = static_cast<std::uint64_t>(store.FileBytes());
  Counter counter(store, &statistics);
  RecordIterator record(store, WalkOptions::BoundedMemory());
  for (; record.Valid(); record.Next()) {
    if (record.error() == 0) counter.Visit(record.key(), *record.value().ptr);
  }
  counter.Finish();
  const int error = record.walk_error() != 0 ? record.walk_error() : store.FileError();
  statistics.file_error = StoreError{error};
  return statistics;
}

}  // namespace kestan
