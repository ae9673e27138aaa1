// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/hostile/gdbm_activity.h"

#include <sys/mman.h>

#include <cstdlib>
#include <functional>

#include "tests/support/gdbm_interposer.h"

namespace kestan_hostile {
namespace {

// The name of the function that gdbm is in, null between calls. It lies in memory that a process
// shares with its children, in which the names have the same addresses.
const char* volatile* Noted() {
  static void* const memory =
      mmap(nullptr, sizeof(const char*), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  return static_cast<const char* volatile*>(memory);
}

class NotedGdbm : public kestan_tests::GdbmInterposer {
 public:
  bool Make(const kestan_tests::GdbmRequest& request, const std::function<void()>& call) override {
    *Noted() = request.function;
    call();
    *Noted() = nullptr;
    return true;
  }
};

}  // namespace

void ForgetGdbmActivity() { *Noted() = nullptr; }

std::string GdbmActivity() {
  const char* const function = *Noted();
  return function != nullptr ? function : "";
}

}  // namespace kestan_hostile

kestan_tests::GdbmInterposer& kestan_tests::ProgramsInterposer() {
  static kestan_hostile::NotedGdbm gdbm;
  return gdbm;
}
