// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/command_groups.h"

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

std::string FirstWord(const std::string& name) { return name.substr(0, name.find(' ')); }

}  // namespace

std::string SecondWord(const Command& command) {
  const std::size_t blank = command.name.find(' ');
  return blank == std::string::npos ? "" : command.name.substr(blank + 1);
}

std::vector<CommandGroup> GroupsOf(const std::vector<Command>& commands) {
  std::vector<CommandGroup> groups;
  for (const Command& command : commands) {
    if (command.hidden) continue;
    const std::string name = FirstWord(command.name);
    if (groups.empty() || groups.back().name != name) groups.push_back({name, {}});
    groups.back().commands.push_back(&command);
  }
  return groups;
}

bool HasSecondWords(const CommandGroup& group) {
  return !SecondWord(*group.commands.front()).empty();
}

Arguments FirstWords(const CommandGroup& group) {
  Arguments words{group.name};
  for (const std::string& alias : group.commands.front()->aliases) words.push_back(alias);
  return words;
}

std::string SecondWords(const CommandGroup& group) {
  std::vector<std::string> words;
  for (const Command* command : group.commands) words.push_back(SecondWord(*command));
  return Joined(words, " ");
}

std::string PurposeOf(const CommandGroup& group) {
  const Command& first = *group.commands.front();
  return HasSecondWords(group) ? first.group_purpose : first.purpose;
}

}  // namespace kestan_cli
