// SPDX-License-Identifier: GPL-3.0-or-later
// A session in a process of its own, in which an allocation fails.
#ifndef KESTAN_TESTS_FAULTS_ALLOCATION_TRIAL_H_
#define KESTAN_TESTS_FAULTS_ALLOCATION_TRIAL_H_

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/allocation_faults.h"
#include "tests/faults/child.h"

namespace kestan_faults {

// How a session went.
struct Trial {
  long nth = 0;
  AllocationLog log;
  Outcome outcome;
};

// Runs `session` with its `nth` allocation failing. At its end it notes "descriptors left".
Trial RunWithFault(long nth, Failing failing, const std::function<void(Transcript*)>& session);

// Says how a session went, for messages of tests.
std::string Describe(const Trial& trial);

// Expects that all of `messages` are promised ones, which only gdbm's failures bring about.
void ExpectPromisedMessages(const std::vector<std::string>& messages, const Trial& trial);

// Expects a session that ended early to have ended as the library ends a process that has no
// memory: with status ENOMEM, and with `message` as its last, which says how much was asked for.
void ExpectEndWithoutMemory(const std::string& message, const Trial& trial);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_ALLOCATION_TRIAL_H_
