// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/support/gdbm_guard.h"

#include <fcntl.h>
#include <gdbm.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <csignal>
#include <functional>
#include <string_view>

#include "fuzz/support/reporting.h"
#include "fuzz/support/small_cache.h"

// Of the leak sanitizer's runtime; null without one.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void __lsan_disable() __attribute__((weak));
extern "C" void __lsan_enable() __attribute__((weak));
// NOLINTEND(bugprone-reserved-identifier)

namespace kestan_fuzz {
namespace {

constexpr unsigned kMostSteps = 2000;  // of one walk: no file here holds so many keys

constexpr rlim_t kMostFileBytes = 1u << 20;  // a damaged header may give terabytes

std::set<std::string> faults;
unsigned fault_count = 0;
std::set<GDBM_FILE> broken;  // gdbm gets no more calls for these
unsigned steps = 0;

sigjmp_buf before_call;
volatile sig_atomic_t is_inside = 0;

struct Handled {
  int signal;
  const char* name;
  struct sigaction previous;
};
std::array<Handled, 3> handled = {
    {{SIGSEGV, "SIGSEGV", {}}, {SIGBUS, "SIGBUS", {}}, {SIGFPE, "SIGFPE", {}}}};

// A signal from elsewhere is raised again and reaches the handler that was there before.
void Handle(int signal, siginfo_t*, void*) {
  if (is_inside != 0) siglongjmp(before_call, signal);
  for (const Handled& each : handled) {
    if (each.signal == signal) sigaction(signal, &each.previous, nullptr);
  }
}

void InstallHandlers() {
  struct sigaction action {};
  action.sa_sigaction = Handle;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  for (Handled& each : handled) sigaction(each.signal, &action, &each.previous);
  std::signal(SIGXFSZ, SIG_IGN);  // the write that passes the limit then fails
}

// Sets the soft limit only: that one can be raised again.
bool LimitFiles(rlim_t bytes) {
  rlimit limit{};
  if (getrlimit(RLIMIT_FSIZE, &limit) != 0) return false;
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

void NoteFault(const std::string& what, GDBM_FILE file) {
  faults.insert(what);
  ++fault_count;
  if (file != nullptr) broken.insert(file);
  gdbm_errno = GDBM_NEED_RECOVERY;
}

std::string NameOf(int signal) {
  for (const Handled& each : handled) {
    if (each.signal == signal) return each.name;
  }
  return "a signal";
}

bool IsBroken(GDBM_FILE file) {
  if (broken.count(file) == 0) return false;
  gdbm_errno = GDBM_NEED_RECOVERY;
  return true;
}

// gdbm loses what it had allocated when it fails. That is not a leak of ours.
void Enter() {
  if (__lsan_disable != nullptr) __lsan_disable();
  is_inside = 1;
}

void Leave() {
  is_inside = 0;
  if (__lsan_enable != nullptr) __lsan_enable();
}

bool HasWalkedTooFar(GDBM_FILE file) {
  if (++steps <= kMostSteps) return false;
  NoteFault("a walk without an end in gdbm_nextkey", file);
  return true;
}

class GuardedGdbm : public SmallCacheGdbm {
 public:
  // Makes `call`. A signal that it raises becomes a fault, and the call fails. Nothing with a
  // destructor may live in `call`.
  bool Make(const kestan_tests::GdbmRequest& request, const std::function<void()>& call) override {
    const std::string_view function = request.function;
    if (function == "firstkey") steps = 0;
    if (function == "nextkey" && HasWalkedTooFar(request.file)) return false;
    if (function == "close") return Close(request, call);
    return MakeGuarded(request, call);
  }

  // After a fault, closes the descriptor that gdbm had opened: the lowest that was free.
  GDBM_FILE Open(const kestan_tests::GdbmOpening& opening,
                 const std::function<GDBM_FILE()>& open_file) override {
    const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(next);
    const unsigned count_before = fault_count;
    GDBM_FILE file = SmallCacheGdbm::Open(opening, open_file);
    if (fault_count != count_before) close(next);
    broken.erase(file);  // the address may have been that of an earlier file
    return file;
  }

 private:
  static bool MakeGuarded(const kestan_tests::GdbmRequest& request,
                          const std::function<void()>& call) {
    if (IsBroken(request.file)) return false;
    const int signal = sigsetjmp(before_call, 1);
    if (signal != 0) {
      Leave();
      NoteFault(NameOf(signal) + " in gdbm_" + request.function, request.file);
      return false;
    }
    Enter();
    call();
    Leave();
    return true;
  }

  // A broken file keeps its memory; only its descriptor is closed.
  static bool Close(const kestan_tests::GdbmRequest& request, const std::function<void()>& call) {
    const int descriptor = gdbm_fdesc(request.file);
    const bool closed = MakeGuarded(request, call);
    if (broken.count(request.file) != 0) close(descriptor);
    return closed;
  }
};

}  // namespace

void StartGuarding() {
  static const bool installed = [] {
    InstallHandlers();
    return true;
  }();
  Require(installed && LimitFiles(kMostFileBytes), "cannot guard gdbm");
  faults.clear();
}

void StopGuarding() { Require(LimitFiles(RLIM_INFINITY), "cannot end the guard"); }

const std::set<std::string>& GdbmFaults() { return faults; }

}  // namespace kestan_fuzz

kestan_tests::GdbmInterposer& kestan_tests::ProgramsInterposer() {
  static kestan_fuzz::GuardedGdbm gdbm;
  return gdbm;
}
