#include <kestan/maintenance.h>

#include <string>
#include <string_view>

#include "cli/commands/commands.h"
#include "cli/index/index_examination.h"

namespace kestan_cli {
namespace {

int RunDump(Kestan&, const Values& values) {
  const std::string index = values.Text("INDEX");
  ExamineIndex(index, Access::kRead);
  Database store;
  OpenStore(store, index, Access::kRead);
  LinePrinter printer;
  const auto error = kestan::DumpIndex(store, [&](std::string_view line) { printer.Take(line); });
  printer.Finish();
  if (error != kestan::StoreError::kNone) throw CannotRead(index, error);
  return kDone;
}

}  // namespace

Command DumpCommand() {
  return {"dump",
          "Print an index as text, which any machine can load.",
          {IndexArgument()},
          {},
          "",
          {"kestan dump my.index > my.dump"},
          RunDump};
}

}  // namespace kestan_cli
