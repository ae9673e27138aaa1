#include <filesystem>
#include <set>

#include "commands.h"
#include "message.h"
#include "opened_index.h"
#include "output.h"

namespace kestan_cli {
namespace {

void CheckIndexed(OpenedIndex& index, const std::set<std::string>& names) {
  for (const std::string& name : names) {
    if (index.engine().DocumentTimestamp(name.c_str()) != 0) continue;
    throw CommandError("no document " + Quoted(name) + " in index " + Quoted(index.path()));
  }
}

void RemoveDocument(Kestan& engine, const std::string& name) {
  engine.RemoveDocumentWords(name.c_str());
  engine.DBDelTitle(name.c_str());
  engine.DBDelSummary(name.c_str());
  engine.DBDelUser(name.c_str());
}

}  // namespace

int RunRemove(Kestan& engine, const std::string& index, const Arguments& names) {
  const std::set<std::string> each_once(names.begin(), names.end());
  {
    // Opened for reading first: a wrong name leaves the file untouched.
    OpenedIndex opened(engine, index, Access::kRead);
    CheckIndexed(opened, each_once);
  }
  {
    OpenedIndex opened(engine, index, Access::kWrite);
    for (const std::string& name : each_once) RemoveDocument(engine, name);
    opened.Save();
  }
  Print("removed " + Counted(each_once.size(), "document") + "\n");
  return kDone;
}

int RunShrink(Kestan& engine, const std::string& index, const Arguments&) {
  ExamineIndex(index, Access::kWrite);
  const auto bytes_before = std::filesystem::file_size(index);
  {
    OpenedIndex opened(engine, index, Access::kWrite);
    engine.ShrinkIndex();
    opened.Save();
  }
  Print("shrunk from " + std::to_string(bytes_before) + " to " +
        std::to_string(std::filesystem::file_size(index)) + " bytes\n");
  return kDone;
}

}  // namespace kestan_cli
