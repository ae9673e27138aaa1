// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/upkeep/option_command.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

int RunSetOption(const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::uint32_t flags = FlagsIn(values);
  OpenedWriter opened(index, OpenedWriter::IfMissing::kFail, StyleOfStandardError(false));
  const std::uint32_t earlier = FlagsOf(opened.Read(), index);
  if ((earlier & flags) != 0) {
    throw CommandError("index " + Quoted(index) + " has flags " + std::to_string(earlier & flags) +
                       " set already");
  }
  KeepFlags(opened, (earlier | flags) & ~kNoPositions);
  if ((flags & kNoPositions) != 0) {
    opened.DropPositions();
  } else {
    opened.Commit();
  }
  return kDone;
}

}  // namespace

Command SetOptionCommand() {
  return {"option set",
          "Set option flags.",
          {IndexArgument(), FlagsArgument()},
          {},
          "Flag 1 drops the positions of all words, for good.",
          {"kestan option set my.index 1"},
          RunSetOption};
}

}  // namespace kestan_cli
