// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/arguments.h"
#include "cli/app/help_text.h"
#include "cli/commands/commands.h"

namespace kestan_cli {
namespace {

int RunHelp(const Values& values) {
  Arguments arguments = values.All("COMMAND");
  arguments.emplace_back("--help");
  PrintHelp(ReadArguments(AllCommands(), arguments).text);
  return kDone;
}

}  // namespace

Command HelpCommand() {
  return {"help",
          "Print what a command takes, with an example.",
          {{"COMMAND", "its name; without one, all commands are listed", Positional::Count::kAny}},
          {},
          "The same as --help after the command.",
          {"kestan help search", "kestan help title set"},
          RunHelp};
}

}  // namespace kestan_cli
