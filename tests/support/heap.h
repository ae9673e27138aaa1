// SPDX-License-Identifier: GPL-3.0-or-later
// How much memory a process has in use.
#ifndef KESTAN_TESTS_SUPPORT_HEAP_H_
#define KESTAN_TESTS_SUPPORT_HEAP_H_

#include <malloc.h>

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/allocator_interface.h>
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#define __SANITIZE_ADDRESS__ 1  // as g++ has it
#endif
#endif

namespace kestan_tests {

// Returns how many bytes are allocated, those of small blocks that were freed a moment ago too.
inline std::size_t HeapBytes() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_HEAP_H_
