// SPDX-License-Identifier: GPL-3.0-or-later
#include <set>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/document_names.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {
namespace {

// Returns the names that `given` stand for, each once.
std::set<std::string> StoredNames(const OpenedWriter& opened, const Arguments& given) {
  const kestan::search::IndexReader reader = opened.Read();
  std::set<std::string> names;
  for (const std::string& name : given) names.insert(StoredName(reader, name, opened.path()));
  return names;
}

int RunRemove(const Values& values) {
  const std::string index = values.Text("INDEX");
  OpenedWriter opened(index, OpenedWriter::IfMissing::kFail,
                      StyleOfStandardError(ReportFormatOf(values) == ReportFormat::kNone));
  const std::set<std::string> names = StoredNames(opened, values.All("NAME"));
  for (const std::string& name : names) opened.Check(opened.writer().Remove(name));
  opened.Commit();
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"removed", names.size()}});
      },
      [&] { return "removed " + Counted(names.size(), "document") + "\n"; });
  return kDone;
}

}  // namespace

Command RemoveCommand() {
  return {"remove",
          "Remove documents with their titles, summaries and user records.",
          {IndexArgument(),
           {"NAME", "names as `kestan list` prints them, or other paths of the same files",
            Positional::Count::kOneOrMore}},
          {JsonOption(), QuietOption()},
          "What they took in the index comes back with time, or at once with `kestan compact`.",
          {"kestan remove my.index /usr/share/doc/bash/NEWS"},
          RunRemove};
}

}  // namespace kestan_cli
