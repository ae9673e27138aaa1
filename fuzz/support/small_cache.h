// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps gdbm's cache small. The library asks for a cache of 65536 buckets. A target opens small
// indexes a thousand times a second, so the table for that would cost more than all the rest.
#ifndef KESTAN_FUZZ_SUPPORT_SMALL_CACHE_H_
#define KESTAN_FUZZ_SUPPORT_SMALL_CACHE_H_

#include <cstddef>

#include "tests/support/gdbm_interposer.h"

namespace kestan_fuzz {

class SmallCacheGdbm : public kestan_tests::GdbmInterposer {
 public:
  std::size_t CacheBuckets(std::size_t) override { return 64; }
};

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_SMALL_CACHE_H_
