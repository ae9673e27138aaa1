// SPDX-License-Identifier: GPL-3.0-or-later
// The commands by the first words of their names.
#ifndef KESTAN_CLI_APP_COMMAND_GROUPS_H_
#define KESTAN_CLI_APP_COMMAND_GROUPS_H_

#include <string>
#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// The commands that share a first word, in the order of the list: one command whose name is that
// word, or a group of commands with two words each.
struct CommandGroup {
  std::string name;  // the first word
  std::vector<const Command*> commands;
};

// Returns the groups of the commands that are not hidden. Borrows `commands`.
std::vector<CommandGroup> GroupsOf(const std::vector<Command>& commands);

// Returns whether the commands of `group` have names of two words.
bool HasSecondWords(const CommandGroup& group);

// Returns the words that may stand first for the group: its name, and the aliases of its one
// command.
Arguments FirstWords(const CommandGroup& group);

// Returns the second word of the name of `command`; "" if it has none.
std::string SecondWord(const Command& command);

// Returns the second words of the names, separated by blanks.
std::string SecondWords(const CommandGroup& group);

// Returns the purpose of the group, or of its one command.
std::string PurposeOf(const CommandGroup& group);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_COMMAND_GROUPS_H_
