// SPDX-License-Identifier: GPL-3.0-or-later
// Datums that live on the heap and are counted.
#ifndef KESTAN_STORAGE_OWNED_DATUM_H_
#define KESTAN_STORAGE_OWNED_DATUM_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <cstring>

namespace kestan {

// Takes `bytes`, which malloc made, as the bytes of a new datum.
//   Returns  its one handle.
inline DBDatumPtr AdoptDatum(char* bytes, std::uint32_t size) {
  DBDatumPtr handle;
  handle.ptr = New<DBDatum>(bytes, size);
  handle.ptr->refs = 1;
  return handle;
}

// Copies `size` bytes into malloc memory. The caller owns the copy, which is never null.
inline char* CopyBytes(const char* bytes, std::uint32_t size) {
  char* const copy = static_cast<char*>(Allocate(size));
  if (size != 0) std::memcpy(copy, bytes, size);
  return copy;
}

// Copies the bytes of `datum` into a new datum.
//   Returns  its one handle.
inline DBDatumPtr CopyDatum(const DBDatum& datum) {
  return AdoptDatum(CopyBytes(datum.data, datum.size), datum.size);
}

}  // namespace kestan

#endif  // KESTAN_STORAGE_OWNED_DATUM_H_
