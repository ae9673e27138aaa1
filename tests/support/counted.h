// SPDX-License-Identifier: GPL-3.0-or-later
// Datums as the store hands them out: on the heap, counted, with bytes from malloc.
#ifndef KESTAN_TESTS_SUPPORT_COUNTED_H_
#define KESTAN_TESTS_SUPPORT_COUNTED_H_

#include <kestan/storage/dbdatum.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kestan_tests {

// Copies `bytes` into malloc memory of just that size, so that the address sanitizer sees each
// byte that is read beyond it. The caller owns the copy.
inline char* MallocCopy(std::string_view bytes) {
  char* const copy = static_cast<char*>(std::malloc(bytes.size()));
  if (!bytes.empty()) std::memcpy(copy, bytes.data(), bytes.size());
  return copy;
}

// Returns the one handle of a new datum with a copy of `bytes`.
inline DBDatumPtr Counted(std::string_view bytes) {
  DBDatumPtr handle;
  handle.ptr = new DBDatum(MallocCopy(bytes), static_cast<std::uint32_t>(bytes.size()));
  handle.ptr->refs = 1;
  return handle;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_COUNTED_H_
