// SPDX-License-Identifier: GPL-3.0-or-later
// A clock that stands still until it is set, so that timestamps can be compared byte for byte.
#ifndef KESTAN_TESTS_MODEL_CLOCK_H_
#define KESTAN_TESTS_MODEL_CLOCK_H_

#include <cstdint>

namespace kestan_model {

// Makes time() of this program return `seconds`.
void SetClock(std::uint32_t seconds);

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_CLOCK_H_
