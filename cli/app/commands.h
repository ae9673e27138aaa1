// All commands, by what they are for. Each throws CommandError for whatever is wrong; a change of
// an index then has not happened.
#ifndef KESTAN_CLI_APP_COMMANDS_H_
#define KESTAN_CLI_APP_COMMANDS_H_

#include <vector>

#include "cli/app/command.h"

namespace kestan_cli {

// In the order in which help lists them.
const std::vector<Command>& AllCommands();

// The parts that AllCommands() puts together.
std::vector<Command> IndexCommands();   // adding files
std::vector<Command> SearchCommands();  // asking
std::vector<Command> ReportCommands();  // list, words
std::vector<Command> StatisticsCommands();
std::vector<Command> DocumentCommands();     // remove, move
std::vector<Command> TextCommands();         // titles, summaries, user records, word lists
std::vector<Command> OptionCommands();       // option flags
std::vector<Command> UpkeepCommands();       // shrink, copy
std::vector<Command> MaintenanceCommands();  // check, repair, dump, load
std::vector<Command> ExportCommands();
std::vector<Command> ManualCommands();  // completion, manual pages

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_COMMANDS_H_
