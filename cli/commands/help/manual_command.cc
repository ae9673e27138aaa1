#include <fstream>
#include <string>

#include "cli/app/manual.h"
#include "cli/commands/commands.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

int RunManual(const Values& values) {
  for (const auto& [name, text] : ManualPages(AllCommands())) {
    const std::string path = values.Text("FOLDER") + "/" + name;
    std::ofstream page(path, std::ios::binary);
    page << text;
    if (!page.flush()) throw CommandError("cannot write " + Quoted(path));
  }
  return kDone;
}

}  // namespace

Command ManualCommand() {
  Command command{"manual",
                  "Write the manual pages into a folder.",
                  {{"FOLDER", "where to write them"}},
                  {},
                  "",
                  {"kestan manual man1"},
                  RunManual};
  command.hidden = true;
  return command;
}

}  // namespace kestan_cli
