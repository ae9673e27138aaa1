#include "adder.h"
#include "commands.h"
#include "files.h"
#include "index_change.h"
#include "message.h"
#include "output.h"

namespace kestan_cli {
namespace {

void CheckInput(const TextFiles& files, const IndexFacts& facts, const std::string& index) {
  if (files.names.empty()) {
    throw CommandError("nothing to index: no text files, " +
                       Counted(files.binary_files, "binary file") + ", " +
                       Counted(files.links, "link"));
  }
  // The engine would remove an earlier version before it finds that there is no room for the new.
  if (files.names.size() > facts.free_codes) {
    throw CommandError("index " + Quoted(index) + " has room for " +
                       Counted(facts.free_codes, "more document") + ", not for " +
                       std::to_string(files.names.size()) + "; shrinking it may make room");
  }
}

unsigned long AddDocuments(IndexChange* change, const std::vector<std::string>& names) {
  Adder adder(change->Begin());
  for (const std::string& name : names) adder.Add(name);
  change->Commit();
  return adder.new_words();
}

int RunIndex(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  IndexChange change(engine, index, Access::kCreate, WayOf(values.Has("--in-place"), index));
  const TextFiles files = FindTextFiles(values.All("PATH"), index);
  CheckInput(files, change.facts(), index);
  const unsigned long new_words = AddDocuments(&change, files.names);
  Print("indexed " + Counted(files.names.size(), "document") + " (" +
        Counted(new_words, "new word") + "), skipped " +
        Counted(files.binary_files, "binary file") + " and " + Counted(files.links, "link") + "\n");
  return kDone;
}

}  // namespace

std::vector<Command> IndexCommands() {
  return {
      {"index",
       "Add text files to an index, which is made where there is none.",
       {IndexArgument(),
        {"PATH", "files, and folders with all that is below them", Positional::Count::kOneOrMore}},
       {InPlaceOption()},
       "",
       {"kestan index my.index /usr/share/doc/bash"},
       RunIndex}};
}

}  // namespace kestan_cli
