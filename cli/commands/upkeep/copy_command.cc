// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search.h>

#include "cli/commands/commands.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"
#include "cli/index/new_index.h"

namespace kestan_cli {
namespace {

int RunCopy(const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string target = values.Text("NEW");
  if (KindOfIndex(index) == IndexKind::kNone) throw CannotOpen(index, kNoSuchIndex);
  NewIndex copy(index, target, "copying", StyleOfStandardError(values.Has("--quiet")));
  copy.Check(kestan::search::CopyIndex(index, target, copy.progress()));
  return kDone;
}

}  // namespace

Command CopyCommand() {
  return {"copy",
          "Copy an index.",
          {IndexArgument(), {"NEW", "what to make, which must not be there"}},
          {QuietOption()},
          "The copy is one state of the index, also while another process is changing it, and the "
          "checksum of every file is compared. Of an index of one file, it has no free space.",
          {"kestan copy my.index backup.index"},
          RunCopy};
}

}  // namespace kestan_cli
