#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/upkeep/option_command.h"
#include "cli/console/message.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

int RunSetOption(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const unsigned long flags = FlagsIn(values);
  IndexTransaction transaction(engine, index, Access::kWrite,
                               UpdateModeOf(values.Has("--in-place")));
  const OpenedIndex& opened = transaction.Begin();
  if ((engine.Options() & flags) != 0) {
    throw CommandError("index " + Quoted(index) + " has flags " +
                       std::to_string(engine.Options() & flags) + " set already");
  }
  opened.WriteOut([&] { engine.SetOptionFlag(flags); });
  transaction.Commit();
  return kDone;
}

}  // namespace

Command SetOptionCommand() {
  return {"option set",
          "Set option flags.",
          {IndexArgument(), FlagsArgument()},
          {InPlaceOption()},
          "Flag 1 drops the positions of all words, for good.",
          {"kestan option set my.index 1"},
          RunSetOption};
}

}  // namespace kestan_cli
