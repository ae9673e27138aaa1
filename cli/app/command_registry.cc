#include "cli/app/command_registry.h"

#include <utility>

#include "cli/index/side_record.h"

namespace kestan_cli {
namespace {

using Commands = std::vector<Command>;

Commands SideRecordCommands() {
  Commands commands;
  for (const SideRecord& record : kSideRecords) {
    commands.push_back(GetSideRecordCommand(record));
    commands.push_back(SetSideRecordCommand(record));
    commands.push_back(DeleteSideRecordCommand(record));
  }
  return commands;
}

void Append(Commands commands, Commands* all) {
  for (Command& command : commands) all->push_back(std::move(command));
}

Commands Gather() {
  Commands all = {IndexCommand(), SearchCommand(), ListCommand(), WordsCommand(),
                  StatsCommand(), RemoveCommand(), MoveCommand()};
  Append(SideRecordCommands(), &all);
  Append({GetWordListCommand(), PutWordListCommand()}, &all);
  Append({GetOptionCommand(), SetOptionCommand(), ClearOptionCommand()}, &all);
  Append({ShrinkCommand(), CopyCommand()}, &all);
  Append({CheckCommand(), RepairCommand(), DumpCommand(), LoadCommand()}, &all);
  Append({ExportCommand(), CompletionCommand(), ManualCommand()}, &all);
  return all;
}

}  // namespace

const Commands& AllCommands() {
  static const Commands all = Gather();
  return all;
}

}  // namespace kestan_cli
