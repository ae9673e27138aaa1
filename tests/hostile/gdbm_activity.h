// SPDX-License-Identifier: GPL-3.0-or-later
// Shows one process which gdbm function another process is in.
#ifndef KESTAN_TESTS_HOSTILE_GDBM_ACTIVITY_H_
#define KESTAN_TESTS_HOSTILE_GDBM_ACTIVITY_H_

#include <string>

namespace kestan_hostile {

// Call it before starting a child process.
void ForgetGdbmActivity();

// Returns the gdbm function that the last child process was in when it ended, as "store" for
// gdbm_store; empty if it was in none.
std::string GdbmActivity();

}  // namespace kestan_hostile

#endif  // KESTAN_TESTS_HOSTILE_GDBM_ACTIVITY_H_
