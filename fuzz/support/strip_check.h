// SPDX-License-Identifier: GPL-3.0-or-later
// Compares a stripping function with its naive twin, to the last byte of the buffer.
#ifndef KESTAN_FUZZ_SUPPORT_STRIP_CHECK_H_
#define KESTAN_FUZZ_SUPPORT_STRIP_CHECK_H_

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/support/reporting.h"
#include "tests/model/strip.h"
#include "tests/support/counted.h"

namespace kestan_fuzz {

struct FreeBytes {
  void operator()(char* bytes) const { std::free(bytes); }
};

// Memory of exactly so many bytes, so that a sanitizer sees the first one outside.
using ExactBytes = std::unique_ptr<char, FreeBytes>;

// Copies `text` with a NUL after it.
inline ExactBytes ExactString(const std::string& text) {
  return ExactBytes(kestan_tests::MallocCopy({text.c_str(), text.size() + 1}));
}

// The whole buffer after a function has written `stripped` over the beginning of `before`.
inline std::string Overwritten(const std::string& before, const kestan_model::Stripped& stripped) {
  std::string after = stripped.text;
  if (stripped.ends_in_zero) after += '\0';
  if (after.size() < before.size()) after += before.substr(after.size());
  return after;
}

// Calls `strip` on a buffer that holds `text` and `spare` bytes more.
template <typename Strip>
void CheckStrip(const std::string& text, std::size_t spare, const kestan_model::Stripped& expected,
                const Strip& strip) {
  const std::string before = text + std::string(spare, '#');
  const ExactBytes buffer(kestan_tests::MallocCopy(before));
  const int length = strip(buffer.get(), static_cast<unsigned>(text.size()));
  Require(length >= 0 && static_cast<std::size_t>(length) == expected.text.size(),
          "the stripped text has another length than the model's");
  const std::string after(buffer.get(), before.size());
  Require(after == Overwritten(before, expected), "the buffer holds other bytes than the model's");
}

}  // namespace kestan_fuzz

#endif  // KESTAN_FUZZ_SUPPORT_STRIP_CHECK_H_
