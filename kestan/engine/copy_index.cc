#include <kestan/engine/kestan.h>
#include <kestan/storage/memory.h>
#include <kestan/storage/walk/record_iterator.h>

#include <cstdio>

namespace {

constexpr int kCopyFlushPeriod = 1000;  // records; it bounds the memory of both caches

}  // namespace

int Kestan::CopyIndexTo(const char* path) {
  Database target;
  const int error = target.Open(path, 1);
  if (error != 0) {
    std::fprintf(stderr, "%s: Could not open index file '%s' -- %s", kestan::kEngineName, path,
                 Database::ErrorString(error));
    return -1;
  }
  kestan::WalkOptions options;
  options.flush_policy = kestan::FlushPolicy::Every(kCopyFlushPeriod);
  options.flush_policy.extra_before_first = 1;
  options.flush_policy.second_store = &target;
  for (kestan::RecordIterator record(store_, options); record.Valid(); record.Next()) {
    // A copy of the bytes: the two stores must not share a datum, or flushing one would take the
    // changes that wait in it from the other.
    const DBDatum& key = record.key();
    const DBDatum& value = *record.value().ptr;
    target.Put(DBDatum(key.data, key.size), DBDatum(value.data, value.size));
  }
  return target.Close();
}
