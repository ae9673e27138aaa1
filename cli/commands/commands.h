// SPDX-License-Identifier: GPL-3.0-or-later
// All commands. Each is declared here and defined in a file of its own.
#ifndef KESTAN_CLI_COMMANDS_COMMANDS_H_
#define KESTAN_CLI_COMMANDS_COMMANDS_H_

#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

struct SideRecord;

// Returns all commands, in the order in which help lists them. Each throws CommandError if anything
// goes wrong; a command that changes an index has then not changed it.
const std::vector<Command>& AllCommands();

// cli/commands/documents/
Command IndexCommand();
Command ListCommand();
Command RemoveCommand();
Command MoveCommand();
Command GetSideRecordCommand(const SideRecord& record);
Command SetSideRecordCommand(const SideRecord& record);
Command DeleteSideRecordCommand(const SideRecord& record);
Command ExportCommand();

// cli/commands/search/
Command SearchCommand();

// cli/commands/words/
Command WordsCommand();
Command GetWordListCommand();
Command PutWordListCommand();

// cli/commands/upkeep/
Command StatsCommand();
Command GetOptionCommand();
Command SetOptionCommand();
Command ClearOptionCommand();
Command CompactCommand();
Command ConvertCommand();
Command CopyCommand();
Command CheckCommand();
Command RepairCommand();
Command DumpCommand();
Command LoadCommand();

// cli/commands/help/
Command CompletionCommand();
Command HelpCommand();
Command ManualCommand();

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_COMMANDS_H_
