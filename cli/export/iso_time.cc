// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/iso_time.h"

#include <array>
#include <cstdio>

namespace kestan_cli {
namespace {

unsigned DaysOf(unsigned year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 366 : 365;
}

unsigned DaysOf(unsigned month, unsigned year) {
  constexpr std::array<unsigned, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return kDays[month] + (month == 1 ? DaysOf(year) - 365 : 0);
}

}  // namespace

// By hand: on some hosts time_t has 32 bits, which end in 2038. Those of an index end in 2106.
std::string IsoTime(std::uint32_t seconds) {
  unsigned days = seconds / 86400;
  unsigned year = 1970;
  while (days >= DaysOf(year)) days -= DaysOf(year++);
  unsigned month = 0;
  while (days >= DaysOf(month, year)) days -= DaysOf(month++, year);
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%04u-%02u-%02uT%02u:%02u:%02uZ", year, month + 1,
                days + 1, static_cast<unsigned>(seconds / 3600 % 24),
                static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60));
  return text.data();
}

}  // namespace kestan_cli
