// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search.h>

#include <exception>
#include <string>
#include <string_view>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"

namespace kestan_cli {
namespace {

int RunDump(const Values& values) {
  const std::string index = values.Text("INDEX");
  if (KindOfIndex(index) == IndexKind::kNone) throw CannotOpen(index, kNoSuchIndex);
  LinePrinter printer;
  std::exception_ptr thrown;  // for exceptions end at the library
  const auto take = [&](std::string_view line) {
    try {
      printer.Take(line);
    } catch (const std::exception&) {
      thrown = std::current_exception();
    }
    return thrown == nullptr;
  };
  const auto status = kestan::search::DumpIndex(index, take);
  if (thrown != nullptr) std::rethrow_exception(thrown);
  printer.Finish();
  CheckStatus(status, index);
  return kDone;
}

}  // namespace

Command DumpCommand() {
  return {"dump",
          "Print an index as text, which any machine can load.",
          {IndexArgument()},
          {},
          "A folder is dumped with everything that it keeps. Parts of it that have to be merged "
          "take room in $TMPDIR, or /tmp.",
          {"kestan dump my.index > my.dump"},
          RunDump};
}

}  // namespace kestan_cli
