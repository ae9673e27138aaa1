#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/upkeep/option_command.h"
#include "cli/console/message.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

int RunClearOption(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const unsigned long flags = FlagsIn(values);
  IndexTransaction transaction(engine, index, Access::kWrite,
                               UpdateModeOf(values.Has("--in-place")));
  transaction.Begin();
  if (engine.UnsetOptionFlag(flags) != 0) {
    throw CommandError("flag 1 of index " + Quoted(index) +
                       " cannot be cleared: the positions of its words are gone");
  }
  transaction.Commit();
  return kDone;
}

}  // namespace

Command ClearOptionCommand() {
  return {"option clear",
          "Clear option flags.",
          {IndexArgument(), FlagsArgument()},
          {InPlaceOption()},
          "",
          {"kestan option clear my.index 4"},
          RunClearOption};
}

}  // namespace kestan_cli
