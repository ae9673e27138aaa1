// SPDX-License-Identifier: GPL-3.0-or-later
// Guards a target against gdbm's own faults in files that hold any bytes.
//
// In a damaged file gdbm may follow an offset out of its memory, walk in a cycle, or make the file
// as long as the damage says. The guard turns such a fault into an error of the call, which gdbm
// may return at any time. So the target tests how our code goes on after it.
#ifndef KESTAN_FUZZ_SUPPORT_GDBM_GUARD_H_
#define KESTAN_FUZZ_SUPPORT_GDBM_GUARD_H_

#include <set>
#include <string>

namespace kestan_fuzz {

// Begins a new execution: forgets the faults of the last one, and lets no file grow past 1 MiB.
void StartGuarding();

// Ends the execution: files can grow again.
void StopGuarding();

// The calls in which gdbm failed in the last execution, as "SIGSEGV in gdbm_fetch".
const std::set<std::string>& GdbmFaults();

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_GDBM_GUARD_H_
