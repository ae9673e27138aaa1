// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/completion/zsh_completion.h"

#include "cli/app/completion/shell_words.h"

namespace kestan_cli {

std::string ZshCompletion(const std::vector<Command>& commands) {
  const std::vector<CommandGroup> groups = GroupsOf(commands);
  std::string names;
  for (const CommandGroup& group : groups) {
    names += "    " + ShellQuoted(group.name + ":" + PurposeOf(group)) + "\n";
  }
  return "#compdef kestan\n" + WordFunctions(groups) +
         "_kestan() {\n"
         "  local -a names next values\n"
         "  names=(\n" +
         names +
         "  )\n"
         "  if (( CURRENT == 2 )); then _describe 'command' names; return; fi\n"
         "  values=(${=\"$(_kestan_values \"$words[2]\" \"$words[CURRENT-1]\")\"})\n"
         "  if (( $#values )); then compadd -a values; return; fi\n"
         "  next=(${=\"$(_kestan_words \"$words[2]\" \"$words[3]\")\"})\n"
         "  if [[ \"$next[1]\" != --* && CURRENT -eq 3 ]]; then compadd -a next; return; fi\n"
         "  if [[ \"$PREFIX\" == -* ]]; then compadd -a next; return; fi\n"
         "  if (( CURRENT > 3 && $#PREFIX )) && [[ \"$words[CURRENT-1]\" != -* ]]; then\n"
         "    next=(${=\"$(_kestan_starts \"$words[2]\" '')\"})\n"
         "    compadd -S '' -a next && return\n"
         "  fi\n"
         "  _files\n"
         "}\n"
         "compdef _kestan kestan\n";
}

}  // namespace kestan_cli
