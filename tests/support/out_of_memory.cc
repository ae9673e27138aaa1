// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/out_of_memory.h"

#include <sys/resource.h>

#include <cerrno>
#include <cstring>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kAddressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif
#else
constexpr bool kAddressSanitizer = false;
#endif

constexpr rlim_t kLimitBytes = 1u << 30;

}  // namespace

// The address sanitizer asks for its settings here.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=2048";
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace kestan_tests {

void LimitMemory() {
  if (kAddressSanitizer) return;
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = kLimitBytes;
  setrlimit(RLIMIT_AS, &limit);
}

testing::Matcher<const std::string&> IsLine(const std::string& line) {
  if (kAddressSanitizer) return testing::ContainsRegex(line);
  return testing::Eq(line);
}

std::string NoMemoryLine(unsigned long long bytes) {
  return "Kestan: could not allocate " + std::to_string(bytes) + " bytes -- " +
         std::strerror(ENOMEM) + "\n";
}

}  // namespace kestan_tests
