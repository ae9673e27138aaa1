// A walk over every record of an index, in bounded memory.
#ifndef KESTAN_MAINTENANCE_WALK_H_
#define KESTAN_MAINTENANCE_WALK_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/flush_policy.h>
#include <kestan/storage/size_guard.h>

namespace kestan {

// Calls `visit(key, value, error)` for each record of `store` in the file's order. `value` is null,
// and `error` gdbm's number, where a record cannot be read. Both datums live for the call. The
// store, which caches each record that it reads, is flushed now and then and at the end. `visit`
// changes nothing in it.
//   Returns  0, or gdbm's error number if the walk ended before the last record, as it does where
//            the records have more bytes together than the file.
template <typename Visit>
int ForEachRecord(Database& store, Visit visit) {
  DBDatumPtr key;
  DBDatumPtr value;
  FlushPolicy cadence(store);
  SizeGuard guard(store);
  for (int error = store.First(&key, &value); key.ptr != nullptr;
       error = store.Next(&key, &value)) {
    const std::size_t value_bytes = value.ptr != nullptr ? value.ptr->size : 0;
    const std::size_t bytes = key.ptr->size + value_bytes;
    if (const int overlap = guard.Count(bytes); overlap != 0) return overlap;
    visit(static_cast<const DBDatum&>(*key.ptr), static_cast<const DBDatum*>(value.ptr), error);
    key.Free();  // a flush keeps what somebody holds
    value.Free();
    cadence.Note(bytes);
  }
  const int error = store.WalkError();
  store.Flush();  // or the records of one walk would wait for the next
  return error;
}

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_WALK_H_
