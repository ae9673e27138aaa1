// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/clock.h"

#include <ctime>

namespace {
std::uint32_t stands_at = 0;
}

// Takes the place of the C library's function in the whole program.
extern "C" std::time_t time(std::time_t* out) noexcept {
  const auto seconds = static_cast<std::time_t>(stands_at);
  if (out != nullptr) *out = seconds;
  return seconds;
}

namespace kestan_model {
void SetClock(std::uint32_t seconds) { stands_at = seconds; }
}  // namespace kestan_model
