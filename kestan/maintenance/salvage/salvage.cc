// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/salvage.h>

#include <kestan/maintenance/salvage/bucket_map.h>
#include <kestan/maintenance/salvage/file_reading.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/maintenance/salvage/used_space.h>
#include <kestan/storage/hash.h>

#include <algorithm>
#include <utility>

namespace kestan {
namespace {

using gdbm::Authority;
using gdbm::Bucket;
using gdbm::Bytes;
using gdbm::Element;
using gdbm::FoundBucket;
using gdbm::Offset;

// An element that may count if nothing better has its key.
struct Fallback {
  Element element;
  unsigned bits;  // of its bucket, 0 without one
};

bool IsOneOfTheBest(const Fallback& left, const Fallback& right) { return left.bits > right.bits; }

}  // namespace

// Finds the records of one file: current ones first, then fallbacks for those that are lost.
class SalvageRun {
 public:
  SalvageRun(const Bytes& file, Salvage* result)
      : file_(file), map_(file), result_(*result), used_(file) {}

  void Run() {
    for (const FoundBucket& bucket : map_.reached()) TakeReached(bucket);
    for (const FoundBucket& bucket : map_.orphans()) TakeOrphan(bucket);
    for (const Element& element : map_.orphan_elements()) TakeOrphanElement(element);
    TakeFallbacks();
    CutOverlaps();
    const auto& records = result_.records_;
    result_.damage_.cut_records = static_cast<std::size_t>(
        std::count_if(records.begin(), records.end(),
                      [](const SalvagedRecord& record) { return record.is_cut; }));
    result_.damage_.header = !map_.has_header();
    result_.damage_.directory = !map_.is_whole();
  }

 private:
  void TakeReached(const FoundBucket& found) {
    gdbm::ReadBucket(file_, map_.shape(), found.at, &bucket_);
    used_.AddFree(bucket_);
    for (const Element& element : bucket_.valid) {
      const auto hash = static_cast<gdbm::Hash>(element.hash);
      if (found.first <= hash && hash <= found.last) Take(element, true);
    }
  }

  void TakeOrphan(const FoundBucket& found) {
    gdbm::ReadBucket(file_, map_.shape(), found.at, &bucket_);
    bool is_believed = false;
    for (const Element& element : bucket_.valid) {
      const Authority authority = map_.AuthorityOf(found, static_cast<gdbm::Hash>(element.hash));
      if (authority == Authority::kCurrent) is_believed = Take(element, true) || is_believed;
      if (authority == Authority::kFallback) fallbacks_.push_back({element, found.bits});
    }
    if (!is_believed) return;
    ++result_.damage_.orphan_buckets;
    used_.AddFree(bucket_);
    used_.AddBucket(found.at, map_.shape().bucket_bytes);
  }

  void TakeOrphanElement(const Element& element) {
    const Authority authority = map_.AuthorityOfElement(static_cast<gdbm::Hash>(element.hash));
    if (authority == Authority::kFallback) fallbacks_.push_back({element, 0});
  }

  // A fallback in free space, or where other records and buckets lie, has been removed or moved.
  void TakeFallbacks() {
    if (fallbacks_.empty()) return;
    AddUsedSpace();
    std::stable_sort(fallbacks_.begin(), fallbacks_.end(), IsOneOfTheBest);
    for (const Fallback& fallback : fallbacks_) {
      if (used_.Overlaps(fallback.element)) continue;
      if (Take(fallback.element, false)) ++result_.damage_.old_records;
    }
  }

  void AddUsedSpace() {
    if (map_.has_header()) used_.AddFreeLists(map_.header());
    used_.Add(0, std::min<Offset>(sizeof(gdbm::Header), file_.size()));
    used_.Add(map_.directory(), map_.directory_bytes());
    for (const FoundBucket& bucket : map_.reached()) {
      used_.Add(bucket.at, map_.shape().bucket_bytes);
    }
    for (const SalvagedRecord& record : result_.records_) {
      used_.Add(record.at, Offset{record.key_bytes} + record.value_bytes);
    }
    used_.Merge();
  }

  // The size of a value may be damaged. The only other evidence of its end is what follows it: the
  // key of the next record, or a bucket of the directory. So the thousands of overlapping records
  // of a file made to fill the disk fit into the file again.
  void CutOverlaps() {
    Vector<Offset> starts;
    for (const FoundBucket& bucket : map_.reached()) starts.push_back(bucket.at);
    for (const SalvagedRecord& record : result_.records_) starts.push_back(record.at);
    std::sort(starts.begin(), starts.end());
    auto& records = result_.records_;
    std::sort(records.begin(), records.end(), [](const auto& left, const auto& right) {
      return std::make_pair(left.at, left.key_bytes) < std::make_pair(right.at, right.key_bytes);
    });
    Offset kept_to = 0;
    auto kept = records.begin();
    for (SalvagedRecord record : records) {
      if (record.at < kept_to) continue;
      CutBefore(starts, &record);
      kept_to = record.at + record.key_bytes + record.value_bytes;
      *kept++ = record;
    }
    records.erase(kept, records.end());
  }

  static void CutBefore(const Vector<Offset>& starts, SalvagedRecord* record) {
    const Offset key_end = record->at + record->key_bytes;
    const auto next = std::upper_bound(starts.begin(), starts.end(), record->at);
    if (next == starts.end() || *next >= key_end + record->value_bytes) return;
    record->value_bytes = static_cast<std::uint32_t>(std::max(*next, key_end) - key_end);
    record->is_cut = true;
  }

  // Adds the record of a valid element, unless its key is there already.
  bool Take(const Element& element, bool is_current) {
    const SalvagedRecord record = RecordOf(element, is_current);
    if ((result_.records_.size() + 1) * 2 > table_.size()) GrowTable();
    std::uint32_t* const place = PlaceOf(result_.KeyOf(record));
    if (*place != 0) return false;
    result_.records_.push_back(record);
    *place = static_cast<std::uint32_t>(result_.records_.size());
    return true;
  }

  // A value that reaches past the end of the file is cut there.
  SalvagedRecord RecordOf(const Element& element, bool is_current) const {
    const auto key_bytes = static_cast<std::uint32_t>(element.key_bytes);
    const auto value_bytes = static_cast<std::uint32_t>(element.value_bytes);
    const Offset left = file_.size() - element.data - key_bytes;
    const bool is_cut = value_bytes > left;
    return {element.data, key_bytes, is_cut ? static_cast<std::uint32_t>(left) : value_bytes,
            is_current, is_cut};
  }

  std::uint32_t* PlaceOf(std::string_view key) {
    const std::size_t mask = table_.size() - 1;
    std::size_t at = hasher_(key) & mask;
    while (table_[at] != 0 && result_.KeyOf(result_.records_[table_[at] - 1]) != key) {
      at = (at + 1) & mask;
    }
    return &table_[at];
  }

  void GrowTable() {
    constexpr std::size_t kFirstPlaces = 1024;
    table_.assign(std::max(kFirstPlaces, table_.size() * 2), 0);
    for (std::size_t i = 0; i < result_.records_.size(); ++i) {
      *PlaceOf(result_.KeyOf(result_.records_[i])) = static_cast<std::uint32_t>(i + 1);
    }
  }

  const Bytes& file_;
  const gdbm::BucketMap map_;
  Salvage& result_;
  const Hasher hasher_;
  Bucket bucket_;
  Vector<Fallback> fallbacks_;
  gdbm::UsedSpace used_;
  Vector<std::uint32_t> table_;  // by hash of the key: the index of a record plus 1, or 0
};

int Salvage::Read(const char* path) {
  records_.clear();
  damage_ = Damage();
  const int error = ReadWholeFile(path, &bytes_, &damage_.unreadable_bytes);
  if (error != 0) return error;
  const Bytes file(bytes_);
  SalvageRun(file, this).Run();
  return 0;
}

std::string_view Salvage::KeyOf(const SalvagedRecord& record) const {
  return std::string_view(bytes_).substr(static_cast<std::size_t>(record.at), record.key_bytes);
}

std::string_view Salvage::ValueOf(const SalvagedRecord& record) const {
  return std::string_view(bytes_).substr(static_cast<std::size_t>(record.at) + record.key_bytes,
                                         record.value_bytes);
}

}  // namespace kestan
