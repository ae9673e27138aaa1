// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/completion/fish_completion.h"

#include "cli/app/completion/shell_words.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

// " -l order -x -a 'best name' -d 'how ...'"
std::string FishOption(const Option& option) {
  std::string text = " -l " + LongName(option).substr(2);
  if (option.names[1] != '-') text += std::string(" -s ") + option.names[1];
  if (!option.choices.empty()) {
    text += " -x -a " + ShellQuoted(Joined(option.choices, " "));
  } else if (!option.value.empty()) {
    text += " -r";
  }
  return text + " -d " + ShellQuoted(option.purpose);
}

}  // namespace

std::string FishCompletion(const std::vector<Command>& commands) {
  std::string lines;
  for (const CommandGroup& group : GroupsOf(commands)) {
    lines += "complete -c kestan -n __fish_use_subcommand -f -a " + group.name + " -d " +
             ShellQuoted(PurposeOf(group)) + "\n";
    const std::string seen = "'__fish_seen_subcommand_from " + Joined(FirstWords(group), " ") + "'";
    if (HasSecondWords(group)) {
      lines += "complete -c kestan -f -n " + seen + "'; and not __fish_seen_subcommand_from " +
               SecondWords(group) + "' -a '" + SecondWords(group) + "'\n";
    }
    for (const Command* command : group.commands) {
      if (!command->starts.empty()) {
        lines += "complete -c kestan -n " + seen + " -a '" + Joined(command->starts, " ") + "'\n";
      }
      for (const Option& option : command->options) {
        lines += "complete -c kestan -n " + seen + FishOption(option) + "\n";
      }
    }
  }
  return lines;
}

}  // namespace kestan_cli
