// SPDX-License-Identifier: GPL-3.0-or-later
// How a test makes memory run out, in the process of a death test only.
#ifndef KESTAN_TESTS_SUPPORT_OUT_OF_MEMORY_H_
#define KESTAN_TESTS_SUPPORT_OUT_OF_MEMORY_H_

#include <gtest/gtest.h>

#include <string>

namespace kestan_tests {

// More than the limit allows.
inline constexpr unsigned kTooManyBytes = 4294967295u;

// Leaves this process less memory than kTooManyBytes. The address sanitizer needs far more address
// space than it gives, so under it nothing is done here: it has a limit of its own.
void LimitMemory();

// Matches a standard error stream that holds `line` and nothing else; under the address sanitizer,
// which warns of its own when its limit is passed, one that holds `line`.
testing::Matcher<const std::string&> IsLine(const std::string& line);

// What the library prints when it cannot get `bytes` bytes.
std::string NoMemoryLine(unsigned long long bytes);

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_OUT_OF_MEMORY_H_
