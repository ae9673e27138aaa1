// SPDX-License-Identifier: GPL-3.0-or-later
// A longer session with an index that keeps what it has flushed, to be killed anywhere.
#ifndef KESTAN_TESTS_FAULTS_KILL_SESSION_H_
#define KESTAN_TESTS_FAULTS_KILL_SESSION_H_

#include <string>
#include <string_view>

#include "tests/faults/kill_aftermath.h"
#include "tests/faults/session.h"

namespace kestan_faults {

inline constexpr int kRounds = 16;

// Each round adds documents that stay, replaces and removes others, and flushes; some shrink the
// index, reopen it, or set flags. The transcript names each of these steps when it has returned.
void RunLongSession(const std::string& index, Transcript* transcript);

// Returns how many rounds a transcript says were flushed.
int RoundsFlushed(std::string_view transcript);

// The documents that stay of the first `rounds` rounds.
Reference LongSessionReference(int rounds);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_KILL_SESSION_H_
