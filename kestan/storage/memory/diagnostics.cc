// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/memory/diagnostics.h>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace kestan {
namespace {

constexpr const char* kEngineName = "Kestan";

}  // namespace

// One call prints all of it, so that lines of two threads do not mix.
// NOLINTNEXTLINE(cert-dcl50-cpp): this way the compiler checks the values against the format
void PrintDiagnostic(const char* format, ...) {
  std::array<char, 256> whole_format{};
  std::snprintf(whole_format.data(), whole_format.size(), "%s: %s", kEngineName, format);
  std::va_list values;
  va_start(values, format);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): seen only when several files are checked
  std::vfprintf(stderr, whole_format.data(), values);
  va_end(values);
}

}  // namespace kestan
