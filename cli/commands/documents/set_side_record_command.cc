#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/documents/side_record_command.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

// Reads the index before a copy is made.
void CheckBefore(Kestan& engine, const std::string& index, const std::string& name) {
  const OpenedIndex opened(engine, index, Access::kRead);
  CheckIndexed(opened, name);
}

int RunSet(Kestan& engine, const SideRecord& record, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string name = values.Text("NAME");
  IndexTransaction transaction(engine, index, Access::kWrite,
                               UpdateModeOf(values.Has("--in-place")));
  CheckBefore(engine, index, name);
  OpenedIndex& opened = transaction.Begin();
  opened.CheckWritten((engine.*record.put)(name.c_str(), values.Text("TEXT").c_str()));
  transaction.Commit();
  return kDone;
}

}  // namespace

Command SetSideRecordCommand(const SideRecord& record) {
  return {
      std::string(record.name) + " set",
      std::string("Set a document's ") + record.noun + ".",
      {IndexArgument(), DocumentArgument(), {"TEXT", "the new text"}},
      {InPlaceOption()},
      "",
      {std::string("kestan ") + record.name + " set my.index notes.txt '" + record.example + "'"},
      [&record](Kestan& engine, const Values& values) { return RunSet(engine, record, values); }};
}

}  // namespace kestan_cli
