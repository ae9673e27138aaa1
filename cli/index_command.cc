#include "adder.h"
#include "commands.h"
#include "files.h"
#include "message.h"
#include "opened_index.h"
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

unsigned long AddDocuments(OpenedIndex& index, const std::vector<std::string>& names) {
  Adder adder(index);
  for (const std::string& name : names) adder.Add(name);
  index.Save();
  return adder.new_words();
}

}  // namespace

int RunIndex(Kestan& engine, const std::string& index, const Arguments& paths) {
  const IndexFacts facts = ExamineIndex(index, Access::kCreate);
  const TextFiles files = FindTextFiles(paths, index);
  CheckInput(files, facts, index);
  unsigned long new_words = 0;
  {
    OpenedIndex opened(engine, index, Access::kCreate);
    new_words = AddDocuments(opened, files.names);
  }
  Print("indexed " + Counted(files.names.size(), "document") + " (" +
        Counted(new_words, "new word") + "), skipped " +
        Counted(files.binary_files, "binary file") + " and " + Counted(files.links, "link") + "\n");
  return kDone;
}

}  // namespace kestan_cli
