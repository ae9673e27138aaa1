#include "fuzz/support/gdbm_guard.h"

#include <fcntl.h>
#include <gdbm.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <csignal>
#include <cstring>

#include "fuzz/support/reporting.h"

// Of the leak sanitizer's runtime; null without one.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" void __lsan_disable() __attribute__((weak));
extern "C" void __lsan_enable() __attribute__((weak));
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace kestan_fuzz {
namespace {

constexpr unsigned kMostSteps = 2000;  // of one walk; no file here has room for so many keys

constexpr rlim_t kMostFileBytes = 1u << 20;  // a damaged header may speak of terabytes

std::set<std::string> faults;
unsigned fault_count = 0;
std::set<GDBM_FILE> broken;  // no call may reach these again
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

// A signal that is not gdbm's is raised again under the handler that was there before.
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

// Of the limit only the part that may be raised again is set.
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

// What gdbm has allocated when it fails is lost, and is no leak of ours.
void Enter() {
  if (__lsan_disable != nullptr) __lsan_disable();
  is_inside = 1;
}

void Leave() {
  is_inside = 0;
  if (__lsan_enable != nullptr) __lsan_enable();
}

// Makes `call`; where it raises a signal, notes that and returns `failed`. Nothing with a
// destructor may live in `call`.
template <typename Result, typename Call>
Result Guard(const char* function, GDBM_FILE file, Result failed, Call call) {
  if (IsBroken(file)) return failed;
  const int signal = sigsetjmp(before_call, 1);
  if (signal != 0) {
    Leave();
    NoteFault(NameOf(signal) + " in " + function, file);
    return failed;
  }
  Enter();
  const Result result = call();
  Leave();
  return result;
}

bool HasWalkedTooFar(GDBM_FILE file) {
  if (++steps <= kMostSteps) return false;
  NoteFault("a walk without an end in gdbm_nextkey", file);
  return true;
}

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

// The linker leads every call of gdbm_NAME to __wrap_gdbm_NAME, and __real_gdbm_NAME to gdbm_NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

using FatalCallback = void (*)(const char*);

GDBM_FILE __real_gdbm_open(const char*, int, int, int, FatalCallback);
int __real_gdbm_close(GDBM_FILE);
int __real_gdbm_store(GDBM_FILE, datum, datum, int);
datum __real_gdbm_fetch(GDBM_FILE, datum);
int __real_gdbm_delete(GDBM_FILE, datum);
datum __real_gdbm_firstkey(GDBM_FILE);
datum __real_gdbm_nextkey(GDBM_FILE, datum);
int __real_gdbm_sync(GDBM_FILE);
int __real_gdbm_reorganize(GDBM_FILE);
int __real_gdbm_setopt(GDBM_FILE, int, void*, int);

// After a fault the descriptor that gdbm had opened, the lowest free one, is closed for it.
GDBM_FILE __wrap_gdbm_open(const char* path, int block_bytes, int flags, int mode,
                           FatalCallback fatal) {
  const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(next);
  const unsigned faults = kestan_fuzz::fault_count;
  auto* const file = kestan_fuzz::Guard<GDBM_FILE>("gdbm_open", nullptr, nullptr, [=] {
    return __real_gdbm_open(path, block_bytes, flags, mode, fatal);
  });
  if (kestan_fuzz::fault_count != faults) close(next);
  kestan_fuzz::broken.erase(file);  // the address may have been that of an earlier file
  return file;
}

// A table for 65536 buckets, which the library asks for, costs more here than all the rest.
int __wrap_gdbm_setopt(GDBM_FILE file, int option, void* value, int size) {
  std::size_t buckets = 64;
  if (option == GDBM_SETCACHESIZE) {
    value = &buckets;
    size = sizeof buckets;
  }
  return kestan_fuzz::Guard("gdbm_setopt", file, -1,
                            [=] { return __real_gdbm_setopt(file, option, value, size); });
}

// What is broken is left in memory; only its descriptor is given back.
int __wrap_gdbm_close(GDBM_FILE file) {
  const int descriptor = gdbm_fdesc(file);
  const int error =
      kestan_fuzz::Guard("gdbm_close", file, -1, [=] { return __real_gdbm_close(file); });
  if (kestan_fuzz::broken.count(file) != 0) close(descriptor);
  return error;
}

int __wrap_gdbm_store(GDBM_FILE file, datum key, datum value, int flag) {
  return kestan_fuzz::Guard("gdbm_store", file, -1,
                            [=] { return __real_gdbm_store(file, key, value, flag); });
}

datum __wrap_gdbm_fetch(GDBM_FILE file, datum key) {
  return kestan_fuzz::Guard("gdbm_fetch", file, datum{nullptr, 0},
                            [=] { return __real_gdbm_fetch(file, key); });
}

int __wrap_gdbm_delete(GDBM_FILE file, datum key) {
  return kestan_fuzz::Guard("gdbm_delete", file, -1, [=] { return __real_gdbm_delete(file, key); });
}

datum __wrap_gdbm_firstkey(GDBM_FILE file) {
  kestan_fuzz::steps = 0;
  return kestan_fuzz::Guard("gdbm_firstkey", file, datum{nullptr, 0},
                            [=] { return __real_gdbm_firstkey(file); });
}

datum __wrap_gdbm_nextkey(GDBM_FILE file, datum key) {
  if (kestan_fuzz::HasWalkedTooFar(file)) return {nullptr, 0};
  return kestan_fuzz::Guard("gdbm_nextkey", file, datum{nullptr, 0},
                            [=] { return __real_gdbm_nextkey(file, key); });
}

int __wrap_gdbm_sync(GDBM_FILE file) {
  return kestan_fuzz::Guard("gdbm_sync", file, -1, [=] { return __real_gdbm_sync(file); });
}

int __wrap_gdbm_reorganize(GDBM_FILE file) {
  return kestan_fuzz::Guard("gdbm_reorganize", file, -1,
                            [=] { return __real_gdbm_reorganize(file); });
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
