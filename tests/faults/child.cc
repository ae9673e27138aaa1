// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/child.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

#include "tests/faults/shared.h"
#include "tests/support/environment.h"

namespace kestan_faults {
namespace {

constexpr int kLongestSeconds = 10;

[[noreturn]] void RunAndExit(const std::function<void(Transcript*)>& action, Transcript* transcript,
                             int standard_error) {
  dup2(standard_error, STDERR_FILENO);
  action(transcript);
  std::exit(0);
}

void KillLater(pid_t child, long after_us) {
  const timespec pause{after_us / 1'000'000, after_us % 1'000'000 * 1000};
  nanosleep(&pause, nullptr);
  kill(child, SIGKILL);
}

// Waits for the end of `child`, and brings it about where that takes too long.
//   Returns  whether it ended by itself.
bool Wait(pid_t child, int* status, rusage* usage) {
  constexpr long kStepUs = 200;
  const timespec pause{0, kStepUs * 1000};
  const int seconds = kestan_tests::NumberFromEnvironment("KESTAN_CHILD_SECONDS", kLongestSeconds);
  for (long waited_us = 0; waited_us < seconds * 1'000'000L; waited_us += kStepUs) {
    if (wait4(child, status, WNOHANG, usage) == child) return true;
    nanosleep(&pause, nullptr);
  }
  kill(child, SIGKILL);
  wait4(child, status, 0, usage);
  return false;
}

std::string ReadAll(int file) {
  std::string bytes(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
  if (pread(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    std::abort();
  return bytes;
}

}  // namespace

Outcome RunInChild(const std::function<void(Transcript*)>& action, long kill_after_us) {
  Shared<Transcript> transcript;
  const int standard_error = memfd_create("stderr", MFD_CLOEXEC);
  const pid_t child = fork();
  if (child == 0) RunAndExit(action, transcript.get(), standard_error);
  if (kill_after_us > 0) KillLater(child, kill_after_us);

  Outcome outcome;
  int status = 0;
  rusage usage{};
  outcome.ended = Wait(child, &status, &usage);
  outcome.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  outcome.peak_kib = usage.ru_maxrss;
  outcome.transcript = transcript.get()->text();
  outcome.standard_error = ReadAll(standard_error);
  close(standard_error);
  return outcome;
}

std::string Describe(const Outcome& outcome) {
  std::ostringstream text;
  if (!outcome.ended) text << "did not end by itself; ";
  text << "exit status " << outcome.exit_status << ", signal " << outcome.signal
       << "\nstandard error:\n"
       << outcome.standard_error << "transcript:\n"
       << outcome.transcript;
  return text.str();
}

}  // namespace kestan_faults
