#include "cli/app/commands.h"

namespace kestan_cli {
namespace {

std::vector<Command> Gather() {
  std::vector<Command> all;
  for (const auto part : {IndexCommands, SearchCommands, ReportCommands, StatisticsCommands,
                          DocumentCommands, TextCommands, OptionCommands, UpkeepCommands,
                          MaintenanceCommands, ExportCommands, ManualCommands}) {
    for (Command& command : part()) all.push_back(std::move(command));
  }
  return all;
}

}  // namespace

const std::vector<Command>& AllCommands() {
  static const std::vector<Command> all = Gather();
  return all;
}

}  // namespace kestan_cli
