// Which function of gdbm a process is in, seen from another process. hostile_tests is linked so
// that every call of gdbm, by the library or a test, is noted.
#ifndef KESTAN_TESTS_HOSTILE_GDBM_ACTIVITY_H_
#define KESTAN_TESTS_HOSTILE_GDBM_ACTIVITY_H_

#include <string>

namespace kestan_hostile {

// Forgets what was noted. To be called before a child process is made.
void ForgetGdbmActivity();

// Returns the function that gdbm was in when the last child process ended, as "store" for
// gdbm_store; empty if it was in none.
std::string GdbmActivity();

}  // namespace kestan_hostile

#endif  // KESTAN_TESTS_HOSTILE_GDBM_ACTIVITY_H_
