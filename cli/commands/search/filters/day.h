// SPDX-License-Identifier: GPL-3.0-or-later
// Days as people write them.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_DAY_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_DAY_H_

#include <cstdint>
#include <ctime>
#include <optional>
#include <string_view>

namespace kestan_cli {

// Returns when the day `text` begins by the clock of the user, in seconds since 1970: YYYY-MM-DD;
// the first day of YYYY-MM or YYYY; "today" and "yesterday" as seen from `now`.
//   Returns  nothing if there is no such day.
std::optional<std::int64_t> StartOfDay(std::string_view text, std::time_t now);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_DAY_H_
