// A guard around gdbm for files that hold anything.
//
// gdbm reads a damaged file with less care than we do: it may follow an offset out of its memory,
// lead a walk in a circle, or make the file as long as the damage says. Such a fault is gdbm's. The
// guard turns it into what a call of gdbm may well answer, an error; so what is tested is how our
// code goes on from there.
#ifndef KESTAN_FUZZ_SUPPORT_GDBM_GUARD_H_
#define KESTAN_FUZZ_SUPPORT_GDBM_GUARD_H_

#include <set>
#include <string>

namespace kestan_fuzz {

// Begins a new execution. Its faults are counted anew, and no file can grow past 1 MiB.
void StartGuarding();

// Ends it: files can grow again.
void StopGuarding();

// The calls in which gdbm failed in the last execution, as "SIGSEGV in gdbm_fetch".
const std::set<std::string>& GdbmFaults();

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_GDBM_GUARD_H_
