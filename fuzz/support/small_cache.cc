// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/support/small_cache.h"

kestan_tests::GdbmInterposer& kestan_tests::ProgramsInterposer() {
  static kestan_fuzz::SmallCacheGdbm gdbm;
  return gdbm;
}
