// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/walk/copy_records.h>

#include <kestan/storage/walk/record_iterator.h>

namespace kestan {
namespace {

constexpr int kCopyFlushPeriod = 1000;  // records; it bounds the memory of both caches

}  // namespace

void CopyRecords(Database& source, Database& target) {
  WalkOptions options;
  options.flush_policy = FlushPolicy::Every(kCopyFlushPeriod);
  options.flush_policy.extra_before_first = 1;
  options.flush_policy.second_store = &target;
  for (RecordIterator record(source, options); record.Valid(); record.Next()) {
    // A copy of the bytes: the two stores must not share a datum, or flushing one would take the
    // changes that wait in it from the other.
    const DBDatum& key = record.key();
    const DBDatum& value = *record.value().ptr;
    target.Put(DBDatum(key.data, key.size), DBDatum(value.data, value.size));
  }
}

}  // namespace kestan
