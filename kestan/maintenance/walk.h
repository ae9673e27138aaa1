// A walk over every record of an index, in bounded memory.
#ifndef KESTAN_MAINTENANCE_WALK_H_
#define KESTAN_MAINTENANCE_WALK_H_

#include <kestan/maintenance/size_guard.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>

namespace kestan {

inline constexpr int kWalkFlushPeriod = 1000;  // records; the store caches each that a walk visits

// Calls `visit(key, value, error)` for each record of `store` in the file's order. `value` is null,
// and `error` gdbm's number, where a record cannot be read. Both datums live for the call; what a
// writer has in its cache is flushed now and then. `visit` changes nothing in the store.
//   Returns  0, or gdbm's error number if the walk ended before the last record, as it does where
//            the records have more bytes together than the file.
template <typename Visit>
int ForEachRecord(Database& store, Visit visit) {
  DBDatumPtr key;
  DBDatumPtr value;
  int since_flush = 0;
  SizeGuard guard(store);
  for (int error = store.First(&key, &value); key.ptr != nullptr;
       error = store.Next(&key, &value)) {
    const std::size_t value_bytes = value.ptr != nullptr ? value.ptr->size : 0;
    if (const int overlap = guard.Count(key.ptr->size + value_bytes); overlap != 0) return overlap;
    visit(static_cast<const DBDatum&>(*key.ptr), static_cast<const DBDatum*>(value.ptr), error);
    if (++since_flush < kWalkFlushPeriod) continue;
    key.Free();  // a flush keeps what somebody holds
    value.Free();
    store.Flush();
    since_flush = 0;
  }
  return store.WalkError();
}

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_WALK_H_
