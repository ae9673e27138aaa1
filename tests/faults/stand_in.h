// SPDX-License-Identifier: GPL-3.0-or-later
// What the functions that stand in for the C library's have in common.
#ifndef KESTAN_TESTS_FAULTS_STAND_IN_H_
#define KESTAN_TESTS_FAULTS_STAND_IN_H_

#include <dlfcn.h>

#include <cerrno>

#include "tests/faults/system_call_watch.h"

namespace kestan_faults {

// Finds the function that a stand-in replaces: the next one of its name.
template <typename Signature>
Signature* Next(const char* name) {
  return reinterpret_cast<Signature*>(dlsym(RTLD_NEXT, name));
}

// Performs a call unless it has to fail.
template <typename Result, typename Action>
Result Perform(const Ruling& ruling, Result failure, Action action) {
  if (ruling.error == 0) return action();
  errno = ruling.error;
  return failure;
}

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_STAND_IN_H_
