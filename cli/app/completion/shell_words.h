// SPDX-License-Identifier: GPL-3.0-or-later
// What the generators of shell completions share.
#ifndef KESTAN_CLI_APP_SHELL_WORDS_H_
#define KESTAN_CLI_APP_SHELL_WORDS_H_

#include <string>
#include <vector>

#include "cli/app/command_groups.h"

namespace kestan_cli {

// Returns `text` in single quotes, for zsh and fish.
std::string ShellQuoted(const std::string& text);

// Returns the functions _kestan_words, _kestan_values and _kestan_starts, which bash and zsh both
// read. Each takes two words of the command line, and prints the words that may follow: the first
// two after the name of the program, or the first and an option. The last prints what arguments
// after the first may begin with.
std::string WordFunctions(const std::vector<CommandGroup>& groups);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_SHELL_WORDS_H_
