#include <string>

#include "cli/commands/commands.h"
#include "cli/console/message.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

void CheckNewName(const std::string& name) {
  if (name.empty()) throw CommandError("the new name is empty");
  if (name.find('\n') == std::string::npos) return;
  throw CommandError("the name " + Quoted(name) +
                     " holds a line feed, and documents are listed one a line");
}

// Reads the index before a copy is made.
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
  IndexTransaction transaction(engine, index, Access::kWrite,
                               UpdateModeOf(values.Has("--in-place")));
  CheckMove(engine, index, from, to, values.Has("--replace") || from == to);
  if (from == to) return kDone;
  OpenedIndex& opened = transaction.Begin();
  RemoveDocument(opened, to);
  MoveDocument(opened, from, to);
  transaction.Commit();
  return kDone;
}

}  // namespace

Command MoveCommand() {
  return {"move",
          "Rename a document, with its title, summary and user record.",
          {IndexArgument(), {"OLD", "its name"}, {"NEW", "the name that it gets"}},
          {{"--replace", "", "remove a document that has the new name first"}, InPlaceOption()},
          "",
          {"kestan move my.index notes.txt archive/notes.txt"},
          RunMove};
}

}  // namespace kestan_cli
