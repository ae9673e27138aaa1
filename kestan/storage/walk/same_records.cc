// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/walk/same_records.h>

#include <kestan/storage/datum_bytes.h>
#include <kestan/storage/walk/record_iterator.h>

namespace kestan {
namespace {

constexpr int kCompareFlushPeriod = 1000;  // records; it bounds the memory of both caches

// Returns whether every record of `part` can be read and is in `whole`.
bool HasAll(Database& whole, Database& part) {
  WalkOptions options;
  options.flush_policy = FlushPolicy::Every(kCompareFlushPeriod);
  options.flush_policy.second_store = &whole;
  DBDatumPtr other;
  RecordIterator record(part, options);
  for (; record.Valid(); record.Next()) {
    if (whole.Get(&other, record.key()) != 0) return false;
    if (BytesOf(*other.ptr) != BytesOf(*record.value().ptr)) return false;
  }
  return record.all_read();
}

}  // namespace

bool HaveSameRecords(Database& first, Database& second) {
  if (first.FileBytes() == -1 || second.FileBytes() == -1) return false;
  return HasAll(second, first) && HasAll(first, second);
}

}  // namespace kestan
