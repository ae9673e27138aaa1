// SPDX-License-Identifier: GPL-3.0-or-later
// How much a test tries, where its environment says so.
#ifndef KESTAN_TESTS_SUPPORT_ENVIRONMENT_H_
#define KESTAN_TESTS_SUPPORT_ENVIRONMENT_H_

#include <cstdlib>

namespace kestan_tests {

// Returns the number that the environment variable `name` holds, or `otherwise`.
inline int NumberFromEnvironment(const char* name, int otherwise) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::atoi(value) : otherwise;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_ENVIRONMENT_H_
