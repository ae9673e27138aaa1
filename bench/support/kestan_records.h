// SPDX-License-Identifier: GPL-3.0-or-later
// What an index file of Kestan holds, without what gdbm needs around it.
#ifndef KESTAN_BENCH_SUPPORT_KESTAN_RECORDS_H_
#define KESTAN_BENCH_SUPPORT_KESTAN_RECORDS_H_

#include <kestan/kestan.h>

#include <cstdint>
#include <string>

#include "bench/peers/engine.h"

namespace kestan_bench {

// Returns the sum of the sizes of all keys and values in the index file at `path`.
inline std::uint64_t RecordBytes(const std::string& path) {
  Database store;
  if (store.Open(path.c_str(), 0) != 0) Fail(path, "cannot be opened");
  std::uint64_t bytes = 0;
  DBDatumPtr key;
  DBDatumPtr value;
  for (int error = store.First(&key, &value); error == 0; error = store.Next(&key, &value)) {
    bytes += key.ptr->size + value.ptr->size;
  }
  return bytes;
}

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_SUPPORT_KESTAN_RECORDS_H_
