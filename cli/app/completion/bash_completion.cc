// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/completion/bash_completion.h"

#include "cli/app/completion/shell_words.h"

namespace kestan_cli {
namespace {

std::string NamesOf(const std::vector<CommandGroup>& groups) {
  std::string names;
  for (const CommandGroup& group : groups) names += group.name + " ";
  return names + "--help --version";
}

}  // namespace

std::string BashCompletion(const std::vector<Command>& commands) {
  const std::vector<CommandGroup> groups = GroupsOf(commands);
  return WordFunctions(groups) +
         "_kestan() {\n"
         "  local now=${COMP_WORDS[COMP_CWORD]} words values\n"
         "  values=$(_kestan_values \"${COMP_WORDS[1]}\" \"${COMP_WORDS[COMP_CWORD-1]}\")\n"
         "  words=$(_kestan_words \"${COMP_WORDS[1]}\" \"${COMP_WORDS[2]}\")\n"
         "  [ \"$COMP_CWORD\" -gt 1 ] || words='" +
         NamesOf(groups) +
         "'\n"
         "  if [ \"$COMP_CWORD\" -gt 2 ] || [ \"${words#--}\" != \"$words\" ]; then\n"
         "    [ \"${now#-}\" != \"$now\" ] || words=$values\n"
         "  fi\n"
         "  if [ -z \"$words\" ] && [ -n \"$now\" ] && [ \"$COMP_CWORD\" -gt 2 ]; then\n"
         "    case ${COMP_WORDS[COMP_CWORD-1]} in\n"
         "      -*) ;;\n"
         "      *) words=$(_kestan_starts \"${COMP_WORDS[1]}\" '') ;;\n"
         "    esac\n"
         "  fi\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$now\")\n"
         "  case ${COMPREPLY[0]} in *:) compopt -o nospace 2>/dev/null ;; esac\n"
         "}\n"
         "complete -o default -F _kestan kestan\n";
}

}  // namespace kestan_cli
