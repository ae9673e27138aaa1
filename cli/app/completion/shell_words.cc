// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/completion/shell_words.h"

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

// Returns the names of a command's options: "--help -0 --null".
std::string OptionWords(const Command& command) {
  std::string words = "--help";
  for (const Option& option : command.options) {
    std::string names = option.names;
    const std::size_t comma = names.find(',');
    if (comma != std::string::npos) names[comma] = ' ';
    words += " " + names;
  }
  return words;
}

// Returns the pattern of the group followed by `next`: "compact\ *|shrink\ *".
std::string PatternOf(const CommandGroup& group, const std::string& next) {
  Arguments patterns = FirstWords(group);
  for (std::string& pattern : patterns) pattern += "\\ " + next;
  return Joined(patterns, "|");
}

// Returns a case that prints the words that may follow $1 and $2.
std::string CasesOf(const std::vector<CommandGroup>& groups) {
  std::string cases = "  case \"$1 $2\" in\n";
  for (const CommandGroup& group : groups) {
    for (const Command* command : group.commands) {
      const std::string pattern =
          HasSecondWords(group) ? "\"" + command->name + "\"" : PatternOf(group, "*");
      cases += "    " + pattern + ") echo \"" + OptionWords(*command) + "\" ;;\n";
    }
    if (HasSecondWords(group)) {
      cases += "    " + group.name + "\\ *) echo \"" + SecondWords(group) + "\" ;;\n";
    }
  }
  return cases + "  esac\n";
}

// Returns a case that prints the values of the option $2 of the command $1.
std::string CasesOfValues(const std::vector<CommandGroup>& groups) {
  std::string cases = "  case \"$1 $2\" in\n";
  for (const CommandGroup& group : groups) {
    for (const Command* command : group.commands) {
      for (const Option& option : command->options) {
        if (option.choices.empty()) continue;
        cases += "    " + PatternOf(group, LongName(option)) + ") echo \"" +
                 Joined(option.choices, " ") + "\" ;;\n";
      }
    }
  }
  return cases + "  esac\n";
}

// Returns a case that prints what arguments of the command $1 may begin with.
std::string CasesOfStarts(const std::vector<CommandGroup>& groups) {
  std::string cases = "  case \"$1 $2\" in\n";
  for (const CommandGroup& group : groups) {
    for (const Command* command : group.commands) {
      if (command->starts.empty()) continue;
      cases +=
          "    " + PatternOf(group, "*") + ") echo \"" + Joined(command->starts, " ") + "\" ;;\n";
    }
  }
  return cases + "  esac\n";
}

}  // namespace

std::string ShellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char letter : text)
    quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return quoted + "'";
}

std::string WordFunctions(const std::vector<CommandGroup>& groups) {
  return "_kestan_words() {\n" + CasesOf(groups) + "}\n_kestan_values() {\n" +
         CasesOfValues(groups) + "}\n_kestan_starts() {\n" + CasesOfStarts(groups) + "}\n";
}

}  // namespace kestan_cli
