// SPDX-License-Identifier: GPL-3.0-or-later
// The session under a watch of its system calls, and what it may print.
#ifndef KESTAN_TESTS_FAULTS_SYSTEM_CALL_SESSION_H_
#define KESTAN_TESTS_FAULTS_SYSTEM_CALL_SESSION_H_

#include <string>
#include <string_view>
#include <vector>

#include "tests/faults/child.h"
#include "tests/faults/session.h"
#include "tests/faults/system_call_watch.h"

namespace kestan_faults {

// Runs the session in a child with `rule` for its system calls. The transcript says "short write"
// where a write first moved fewer bytes than it was asked to, and "files left open" at the end.
// The folder of the two files is removed first with all that it holds, and made again.
Outcome RunWatchedSession(const std::string& folder, const CallRule& rule);

// The index that RunWatchedSession leaves in `folder`.
std::string IndexIn(const std::string& folder);

// Returns the functions that an undisturbed session calls, one for each call, in their order.
std::vector<Function> CallsOfSession(const std::string& folder);

// Returns whether `standard_error` holds only lines that the engine promises.
bool HoldsOnlyPromisedLines(const std::string& standard_error);

// Returns whether a process ended as the engine promises, whatever the system did to it: by itself,
// with status 0, or with status 1 after a line that ends in "(oops!)".
bool EndedAsPromised(const Outcome& outcome);

// Returns the number that a transcript has for `what`, or -1 if it has none.
long NumberIn(std::string_view transcript, std::string_view what);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SYSTEM_CALL_SESSION_H_
