#include <set>
#include <string>

#include "cli/app/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

using Names = std::set<std::string>;

int RunRemove(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const Arguments given = values.All("NAME");
  const Names names(given.begin(), given.end());
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  {
    const OpenedIndex opened(engine, index, Access::kRead);
    for (const std::string& name : names) CheckIndexed(opened, name);
  }
  const OpenedIndex& opened = change.Begin();
  for (const std::string& name : names) RemoveDocument(opened, name);
  change.Commit();
  if (values.Has("--json")) {
    Print(JsonLine({{"schema", kJsonSchema}, {"removed", names.size()}}));
  } else if (!values.Has("--quiet")) {
    Print("removed " + Counted(names.size(), "document") + "\n");
  }
  return kDone;
}

void CheckNewName(const std::string& name) {
  if (name.empty()) throw CommandError("the new name is empty");
  if (name.find('\n') == std::string::npos) return;
  throw CommandError("the name " + Quoted(name) +
                     " holds a line feed, and documents are listed one a line");
}

// Looks before the copy is made.
void CheckMove(Kestan& engine, const std::string& index, const std::string& from,
               const std::string& to, bool replace) {
  const OpenedIndex opened(engine, index, Access::kRead);
  CheckIndexed(opened, from);
  if (replace || engine.DocumentTimestamp(to.c_str()) == 0) return;
  throw CommandError("index " + Quoted(index) + " has a document " + Quoted(to) +
                     " already; --replace removes it first");
}

int RunMove(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string from = values.Text("OLD");
  const std::string to = values.Text("NEW");
  CheckNewName(to);
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  CheckMove(engine, index, from, to, values.Has("--replace") || from == to);
  if (from == to) return kDone;
  OpenedIndex& opened = change.Begin();
  RemoveDocument(opened, to);
  MoveDocument(opened, from, to);
  change.Commit();
  return kDone;
}

}  // namespace

std::vector<Command> DocumentCommands() {
  return {
      {"remove",
       "Remove documents with their titles, summaries and user records.",
       {IndexArgument(),
        {"NAME", "names as `kestan list` prints them", Positional::Count::kOneOrMore}},
       {JsonOption(), InPlaceOption(), QuietOption()},
       "What they took in the file comes back with `kestan shrink`.",
       {"kestan remove my.index /usr/share/doc/bash/NEWS"},
       RunRemove},
      {"move",
       "Rename a document, with its title, summary and user record.",
       {IndexArgument(), {"OLD", "its name"}, {"NEW", "the name that it gets"}},
       {{"--replace", "", "remove a document that has the new name first"}, InPlaceOption()},
       "",
       {"kestan move my.index notes.txt archive/notes.txt"},
       RunMove},
  };
}

}  // namespace kestan_cli
