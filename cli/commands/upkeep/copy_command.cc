#include "cli/commands/commands.h"
#include "cli/index/copied_index.h"

namespace kestan_cli {
namespace {

int RunCopy(Kestan& engine, const Values& values) {
  CopyIndex(engine, values.Text("INDEX"), values.Text("NEW"));
  return kDone;
}

}  // namespace

Command CopyCommand() {
  return {"copy",
          "Copy an index, record by record, into a new file.",
          {IndexArgument(), {"NEW", "the file to make, which must not be there"}},
          {},
          "The copy has no free space in it. Copying the file itself is safe too, while no program "
          "has the index open for writing.",
          {"kestan copy my.index backup.index"},
          RunCopy};
}

}  // namespace kestan_cli
