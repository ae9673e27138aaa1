// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/day.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kestan_cli {
namespace {

struct Date {
  int year;
  int month;  // from 1
  int day;    // from 1
};

// Takes `digits` digits off the front of `text`.
std::optional<int> TakeNumber(std::string_view* text, std::size_t digits) {
  if (text->size() < digits) return std::nullopt;
  int number = 0;
  for (const char digit : text->substr(0, digits)) {
    if (digit < '0' || digit > '9') return std::nullopt;
    number = 10 * number + (digit - '0');
  }
  text->remove_prefix(digits);
  return number;
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysIn(int month, int year) {
  constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

std::optional<Date> DateOf(std::string_view text) {
  Date date{0, 1, 1};
  const auto year = TakeNumber(&text, 4);
  if (!year) return std::nullopt;
  date.year = *year;
  for (int* const part : {&date.month, &date.day}) {
    if (text.empty()) break;
    if (text.front() != '-') return std::nullopt;
    text.remove_prefix(1);
    const auto number = TakeNumber(&text, 2);
    if (!number) return std::nullopt;
    *part = *number;
  }
  if (!text.empty() || date.month < 1 || date.month > 12) return std::nullopt;
  if (date.day < 1 || date.day > DaysIn(date.month, date.year)) return std::nullopt;
  return date;
}

// Returns the days from 1970-01-01 to `date`.
std::int64_t DaysTo(const Date& date) {
  std::int64_t days = std::int64_t{365} * (date.year - 1970);
  for (int year = std::min(date.year, 1970); year < std::max(date.year, 1970); ++year) {
    if (IsLeapYear(year)) days += date.year > 1970 ? 1 : -1;
  }
  for (int month = 1; month < date.month; ++month) days += DaysIn(month, date.year);
  return days + date.day - 1;
}

// Midnight, or what comes first where clocks are put forward then. Where the system's clock does
// not reach, by that of Greenwich.
std::int64_t StartOf(const Date& date) {
  std::tm parts{};
  parts.tm_year = date.year - 1900;
  parts.tm_mon = date.month - 1;
  parts.tm_mday = date.day;
  parts.tm_isdst = -1;
  const std::time_t start = std::mktime(&parts);
  constexpr std::int64_t kSecondsOfDay = 86'400;
  return start == std::time_t{-1} ? kSecondsOfDay * DaysTo(date) : std::int64_t{start};
}

}  // namespace

std::optional<std::int64_t> StartOfDay(std::string_view text, std::time_t now) {
  const bool is_yesterday = text == "yesterday";
  if (text != "today" && !is_yesterday) {
    const auto date = DateOf(text);
    return date ? std::optional(StartOf(*date)) : std::nullopt;
  }
  std::tm parts{};
  if (localtime_r(&now, &parts) == nullptr) return std::nullopt;
  // Day 0 of a month is the last of the one before.
  return StartOf({parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday - (is_yesterday ? 1 : 0)});
}

}  // namespace kestan_cli
