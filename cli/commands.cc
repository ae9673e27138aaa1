#include "commands.h"

namespace kestan_cli {
namespace {

std::vector<Command> Gather() {
  std::vector<Command> all;
  for (const auto part : {IndexCommands, SearchCommands, ReportCommands, DocumentCommands,
                          TextCommands, UpkeepCommands, ManualCommands}) {
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
