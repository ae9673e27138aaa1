// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/message.h"
#include "cli/index/document_names.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {
namespace {

using kestan::search::Status;
using kestan::search::StatusCode;

void CheckNewName(const std::string& name) {
  if (name.empty()) throw CommandError("the new name is empty");
  if (name.find('\n') == std::string::npos) return;
  throw CommandError("the name " + Quoted(name) +
                     " holds a line feed, and documents are listed one a line");
}

// Returns the name that a document called `from` in the index gets. A document of a file is named
// after another file.
std::string NewName(const std::string& from, const std::string& given) {
  return from.front() == '/' ? CanonicalPath(given) : given;
}

void Rename(OpenedWriter& opened, const std::string& from, const std::string& to, bool replace) {
  if (replace) {
    const Status removed = opened.writer().Remove(to);
    if (removed.code() != StatusCode::kNotFound) opened.Check(removed);
  }
  const Status renamed = opened.writer().Rename(from, to);
  if (renamed.code() != StatusCode::kAlreadyExists) return opened.Check(renamed);
  throw CommandError("index " + Quoted(opened.path()) + " has a document " + Quoted(to) +
                     " already; --replace removes it first");
}

int RunMove(const Values& values) {
  const std::string index = values.Text("INDEX");
  CheckNewName(values.Text("NEW"));
  OpenedWriter opened(index, OpenedWriter::IfMissing::kFail, StyleOfStandardError(false));
  const std::string from = StoredName(opened.Read(), values.Text("OLD"), index);
  const std::string to = NewName(from, values.Text("NEW"));
  if (from == to) return kDone;
  Rename(opened, from, to, values.Has("--replace"));
  opened.Commit();
  return kDone;
}

}  // namespace

Command MoveCommand() {
  return {"move",
          "Rename a document, with its title, summary and user record.",
          {IndexArgument(),
           {"OLD", "its name, as `kestan list` prints it"},
           {"NEW", "the name that it gets; of a file, its new path"}},
          {{"--replace", "", "remove a document that has the new name first"}},
          "",
          {"kestan move my.index notes.txt archive/notes.txt"},
          RunMove};
}

}  // namespace kestan_cli
