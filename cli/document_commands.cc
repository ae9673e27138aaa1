#include <set>
#include <string>

#include "commands.h"
#include "index_change.h"
#include "message.h"
#include "output.h"

namespace kestan_cli {
namespace {

using Names = std::set<std::string>;

void CheckIndexed(Kestan& engine, const std::string& index, const Names& names) {
  for (const std::string& name : names) {
    if (engine.DocumentTimestamp(name.c_str()) != 0) continue;
    throw CommandError("no document " + Quoted(name) + " in index " + Quoted(index));
  }
}

void Remove(Kestan& engine, const std::string& name) {
  engine.RemoveDocumentWords(name.c_str());
  engine.DBDelTitle(name.c_str());
  engine.DBDelSummary(name.c_str());
  engine.DBDelUser(name.c_str());
}

int RunRemove(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const Arguments given = values.All("NAME");
  const Names names(given.begin(), given.end());
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  {
    const OpenedIndex opened(engine, index, Access::kRead);
    CheckIndexed(engine, index, names);
  }
  change.Begin();
  for (const std::string& name : names) Remove(engine, name);
  change.Commit();
  if (!values.Has("--quiet")) Print("removed " + Counted(names.size(), "document") + "\n");
  return kDone;
}

// Moves one of the texts that go with a document.
void MoveText(Kestan& engine, char* (Kestan::*get)(const char*),
              int (Kestan::*put)(const char*, const char*), int (Kestan::*del)(const char*),
              const std::string& from, const std::string& to) {
  const char* const found = (engine.*get)(from.c_str());
  if (found == nullptr) {
    (engine.*del)(to.c_str());
    return;
  }
  const std::string text = found;
  (engine.*put)(to.c_str(), text.c_str());
  (engine.*del)(from.c_str());
}

int RunMove(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string from = values.Text("OLD");
  const std::string to = values.Text("NEW");
  if (to.find('\n') != std::string::npos) {
    throw CommandError("the name " + Quoted(to) +
                       " holds a line feed, and documents are listed one a line");
  }
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  {
    const OpenedIndex opened(engine, index, Access::kRead);
    CheckIndexed(engine, index, {from});
    if (from == to) return kDone;
    if (!values.Has("--replace") && engine.DocumentTimestamp(to.c_str()) != 0) {
      throw CommandError("index " + Quoted(index) + " has a document " + Quoted(to) +
                         " already; --replace removes it first");
    }
  }
  change.Begin();
  engine.RemoveDocumentWords(to.c_str());
  if (engine.MoveDocumentWords(from.c_str(), to.c_str()) != 0) {
    throw CommandError("document " + Quoted(from) + " of index " + Quoted(index) +
                       " is damaged; see kestan check");
  }
  MoveText(engine, &Kestan::DBGetTitle, &Kestan::DBPutTitle, &Kestan::DBDelTitle, from, to);
  MoveText(engine, &Kestan::DBGetSummary, &Kestan::DBPutSummary, &Kestan::DBDelSummary, from, to);
  MoveText(engine, &Kestan::DBGetUser, &Kestan::DBPutUser, &Kestan::DBDelUser, from, to);
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
       {InPlaceOption(), QuietOption()},
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
