// SPDX-License-Identifier: GPL-3.0-or-later
// Stopping the command at the system calls that it makes.
#ifndef KESTAN_TESTS_CLI_TRACED_COMMAND_H_
#define KESTAN_TESTS_CLI_TRACED_COMMAND_H_

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace kestan_tests {

// A system call that the command is about to make.
struct Call {
  unsigned long long number;
  const __ptrace_syscall_info& info;

  unsigned long long Argument(int index) const { return info.entry.args[index]; }
};

// Runs in the child before it becomes the command.
inline void BeTraced() { ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); }

// Lets the traced `child`, just started, run until it is about to make a call that is `wanted`.
//   Returns  false if it ended before; there is no need to wait for it then.
inline bool StopBefore(pid_t child, const std::function<bool(const Call&)>& wanted) {
  int status = 0;
  waitpid(child, &status, 0);  // stopped at its start
  ptrace(PTRACE_SETOPTIONS, child, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  while (true) {
    ptrace(PTRACE_SYSCALL, child, 0, 0);
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) return false;
    __ptrace_syscall_info call{};
    ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof call, &call);
    const bool enters = call.op == PTRACE_SYSCALL_INFO_ENTRY;
    if (enters && wanted({call.entry.nr, call})) return true;
  }
}

// Ends a child that StopBefore has stopped.
inline void EndStopped(pid_t child) {
  int status = 0;
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
}

// Lets a child go on that StopBefore has stopped, to its end.
//   Returns  its exit status; -1 if a signal ended it.
inline int Resume(pid_t child) {
  int status = 0;
  ptrace(PTRACE_DETACH, child, 0, 0);
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Returns whether `call` renames a file, as the last step of a change does.
inline bool IsRename(const Call& call) {
#ifdef SYS_renameat
  if (call.number == SYS_renameat) return true;
#endif
#ifdef SYS_rename
  if (call.number == SYS_rename) return true;
#endif
  return call.number == SYS_renameat2;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_TRACED_COMMAND_H_
