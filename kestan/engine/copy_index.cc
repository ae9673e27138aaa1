#include <kestan/engine/kestan.h>
#include <kestan/storage/memory.h>

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
  DBDatumPtr key;
  DBDatumPtr value;
  int since_flush = 0;
  for (int end = store_.First(&key, &value); end == 0; end = store_.Next(&key, &value)) {
    // A copy of the bytes: the two stores must not share a datum, or flushing one would take the
    // changes that wait in it from the other.
    target.Put(DBDatum(key.ptr->data, key.ptr->size), DBDatum(value.ptr->data, value.ptr->size));
    if (since_flush == kCopyFlushPeriod) {
      store_.Flush();
      target.Flush();
      since_flush = 0;
    }
    ++since_flush;
  }
  return target.Close();
}
