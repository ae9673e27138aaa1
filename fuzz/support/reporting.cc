// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/support/reporting.h"

#include <cstdio>
#include <cstdlib>

namespace kestan_fuzz {
namespace {

// A stream into memory, which grows with what is written.
struct MemoryStream {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* file = open_memstream(&bytes, &size);
};

MemoryStream& Memory() {
  static MemoryStream memory;
  return memory;
}

// The C library lets a program put another stream in the place of `stderr`, which takes no call of
// the system. libFuzzer and the sanitizers do not look there.
std::FILE* real_stderr = nullptr;

}  // namespace

void Fail(const std::string& what) {
  std::printf("fuzz: %s\n", what.c_str());
  std::fflush(stdout);
  std::abort();
}

void SetErrorsAside() {
  Require(Memory().file != nullptr, "cannot set the standard error stream aside");
  real_stderr = stderr;
  stderr = Memory().file;
}

std::string TakeErrors() {
  stderr = real_stderr;
  MemoryStream& memory = Memory();
  std::fflush(memory.file);
  std::string printed(memory.bytes, memory.size);
  std::rewind(memory.file);
  return printed;
}

}  // namespace kestan_fuzz
