// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/upkeep/option_command.h"
#include "cli/console/json.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

std::string JsonOf(std::uint32_t flags) {
  return JsonReport({{"flags", flags}, {"positions_kept", (flags & kNoPositions) == 0}});
}

int RunGetOption(const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::uint32_t flags = FlagsOf(OpenReader(index), index);
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
