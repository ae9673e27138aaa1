// SPDX-License-Identifier: GPL-3.0-or-later
// How a target reports that the library did something wrong, and how what the library prints is
// kept out of the way: damaged records make it say much.
#ifndef KESTAN_FUZZ_SUPPORT_REPORTING_H_
#define KESTAN_FUZZ_SUPPORT_REPORTING_H_

#include <string>

namespace kestan_fuzz {

// Prints one line on the standard output and ends the process by a signal, which libFuzzer and
// ctest both count as a failure.
[[noreturn]] void Fail(const std::string& what);

inline void Require(bool holds, const char* what) {
  if (!holds) Fail(what);
}

// Leads what the library prints on the standard error stream into memory, and no longer. Reports of
// the sanitizers come out all the same. Not nested.
//   Returns  (the latter) what was printed in between.
void SetErrorsAside();
std::string TakeErrors();

// Sets errors aside for as long as it lives.
class Quiet {
 public:
  Quiet() { SetErrorsAside(); }
  ~Quiet() { TakeErrors(); }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;
};

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_REPORTING_H_
