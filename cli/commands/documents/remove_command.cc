#include <set>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

using Names = std::set<std::string>;

// Reads the index before a copy is made.
void CheckAllIndexed(Kestan& engine, const std::string& index, const Names& names) {
  const OpenedIndex opened(engine, index, Access::kRead);
  for (const std::string& name : names) CheckIndexed(opened, name);
}

int RunRemove(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const Arguments given = values.All("NAME");
  const Names names(given.begin(), given.end());
  IndexTransaction transaction(engine, index, Access::kWrite,
                               UpdateModeOf(values.Has("--in-place")));
  CheckAllIndexed(engine, index, names);
  const OpenedIndex& opened = transaction.Begin();
  for (const std::string& name : names) RemoveDocument(opened, name);
  transaction.Commit();
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
           {"NAME", "names as `kestan list` prints them", Positional::Count::kOneOrMore}},
          {JsonOption(), InPlaceOption(), QuietOption()},
          "What they took in the file comes back with `kestan shrink`.",
          {"kestan remove my.index /usr/share/doc/bash/NEWS"},
          RunRemove};
}

}  // namespace kestan_cli
