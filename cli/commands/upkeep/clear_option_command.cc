// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/upkeep/option_command.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

int RunClearOption(const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::uint32_t flags = FlagsIn(values);
  OpenedWriter opened(index, OpenedWriter::IfMissing::kFail, StyleOfStandardError(false));
  const std::uint32_t earlier = FlagsOf(opened.Read(), index);
  if ((earlier & flags & kNoPositions) != 0) {
    throw CommandError("flag 1 of index " + Quoted(index) +
                       " cannot be cleared: the positions of its words are gone");
  }
  KeepFlags(opened, earlier & ~flags & ~kNoPositions);
  opened.Commit();
  return kDone;
}

}  // namespace

Command ClearOptionCommand() {
  return {"option clear",
          "Clear option flags.",
          {IndexArgument(), FlagsArgument()},
          {},
          "",
          {"kestan option clear my.index 4"},
          RunClearOption};
}

}  // namespace kestan_cli
