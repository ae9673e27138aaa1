// SPDX-License-Identifier: GPL-3.0-or-later
// The help, as a terminal shows it.
#ifndef KESTAN_CLI_APP_HELP_TEXT_H_
#define KESTAN_CLI_APP_HELP_TEXT_H_

#include <cstddef>
#include <string>

namespace kestan_cli {

// The column in which the help says what an option or a command is for.
constexpr std::size_t kHelpColumn = 28;

// Returns `help` in lines of at most `columns`. What goes on below an option or a command is
// indented as it is. Examples stay on one line, to be copied.
std::string WrappedHelp(const std::string& help, std::size_t columns);

// Prints `help`, wrapped on a terminal. Throws as Print does.
void PrintHelp(const std::string& help);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_HELP_TEXT_H_
