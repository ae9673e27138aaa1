#include <kestan/results.h>

#include <string>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {
namespace {

std::string JsonOf(unsigned long flags) {
  return JsonReport({{"flags", flags}, {"positions_kept", kestan::KeepsPositions(flags)}});
}

int RunGetOption(Kestan& engine, const Values& values) {
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  const unsigned long flags = engine.Options();
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(flags); },
      [&] { return std::to_string(flags) + "\n"; });
  return kDone;
}

}  // namespace

Command GetOptionCommand() {
  return {"option get",
          "Print the option flags.",
          {IndexArgument()},
          {JsonOption()},
          "Flag 1: the index keeps no positions, so that it is smaller and knows no NEAR. The "
          "others are free for the programs that use the index.",
          {"kestan option get my.index"},
          RunGetOption};
}

}  // namespace kestan_cli
