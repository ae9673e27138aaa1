// SPDX-License-Identifier: GPL-3.0-or-later
// The system calls that a child makes, in memory that it shares with its parent.
#ifndef KESTAN_TESTS_FAULTS_CALL_LOG_H_
#define KESTAN_TESTS_FAULTS_CALL_LOG_H_

#include <array>
#include <cstddef>

#include "tests/faults/system_call_watch.h"

namespace kestan_faults {

constexpr std::size_t kMostCalls = 65536;

struct CallLog {
  std::size_t count = 0;
  std::array<Function, kMostCalls> functions;
};

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_CALL_LOG_H_
