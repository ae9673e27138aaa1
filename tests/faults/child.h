// SPDX-License-Identifier: GPL-3.0-or-later
// A process of its own for something that may end it.
#ifndef KESTAN_TESTS_FAULTS_CHILD_H_
#define KESTAN_TESTS_FAULTS_CHILD_H_

#include "tests/faults/session.h"

#include <functional>
#include <string>

namespace kestan_faults {

// How a child process ended.
struct Outcome {
  bool ended = false;   // false: it was killed after 10 s, or as the environment says
  int exit_status = 0;  // -1 if a signal ended it
  int signal = 0;       // 0 if none did
  long peak_kib = 0;    // memory that it had resident at most
  std::string transcript;
  std::string standard_error;
};

// Runs `action` in a child process, which then ends by exit(0). What the action writes to its
// transcript and to the standard error stream is kept, however the child ends. With `kill_after`
// above 0 the child is killed after so many microseconds.
Outcome RunInChild(const std::function<void(Transcript*)>& action, long kill_after_us = 0);

// Says how a child ended, for messages of tests.
std::string Describe(const Outcome& outcome);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_CHILD_H_
