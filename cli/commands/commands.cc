// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/commands.h"

#include <string>
#include <utility>

#include "cli/index/side_record.h"

namespace kestan_cli {
namespace {

using Commands = std::vector<Command>;

void Append(Commands commands, Commands* all) {
  for (Command& command : commands) all->push_back(std::move(command));
}

// Appends commands whose names begin with the same word.
void AppendGroup(const std::string& purpose, Commands commands, Commands* all) {
  for (Command& command : commands) command.group_purpose = purpose;
  Append(std::move(commands), all);
}

void AppendSideRecordCommands(Commands* all) {
  for (const SideRecord& record : kSideRecords) {
    const std::string purpose = std::string("Get, set or delete a document's ") + record.noun + ".";
    AppendGroup(purpose,
                {GetSideRecordCommand(record), SetSideRecordCommand(record),
                 DeleteSideRecordCommand(record)},
                all);
  }
}

Commands Gather() {
  Commands all = {IndexCommand(), SearchCommand(), ListCommand(), WordsCommand(),
                  StatsCommand(), RemoveCommand(), MoveCommand()};
  AppendSideRecordCommands(&all);
  AppendGroup("Get or put a list of words.", {GetWordListCommand(), PutWordListCommand()}, &all);
  AppendGroup("Get, set or clear option flags.",
              {GetOptionCommand(), SetOptionCommand(), ClearOptionCommand()}, &all);
  Append({CompactCommand(), ConvertCommand(), CopyCommand()}, &all);
  Append({CheckCommand(), RepairCommand(), DumpCommand(), LoadCommand()}, &all);
  Append({ExportCommand(), HelpCommand(), CompletionCommand(), ManualCommand()}, &all);
  return all;
}

}  // namespace

const Commands& AllCommands() {
  static const Commands all = Gather();
  return all;
}

}  // namespace kestan_cli
