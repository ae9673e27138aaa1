// SPDX-License-Identifier: GPL-3.0-or-later
// Capitals of all scripts.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_LOWER_CASE_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_LOWER_CASE_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns `utf8` with each capital in lower case, as far as one character stands for it, whatever
// the locale. Where the system has no table of other letters, only those of ASCII. Bytes that are
// not UTF-8 stay.
std::string LowerCaseOfAll(std::string_view utf8);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_LOWER_CASE_H_
