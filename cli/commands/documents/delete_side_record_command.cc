#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/documents/side_record_command.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

int RunDelete(Kestan& engine, const SideRecord& record, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string name = values.Text("NAME");
  IndexTransaction transaction(engine, index, Access::kWrite,
                               UpdateModeOf(values.Has("--in-place")));
  const OpenedIndex& opened = transaction.Begin();
  if ((engine.*record.remove)(name.c_str()) != 0) {
    CheckIndexed(opened, name);
    throw NoSideRecord(record, name, index);
  }
  transaction.Commit();
  return kDone;
}

}  // namespace

Command DeleteSideRecordCommand(const SideRecord& record) {
  return {std::string(record.name) + " delete",
          std::string("Delete a document's ") + record.noun + ".",
          {IndexArgument(), DocumentArgument()},
          {InPlaceOption()},
          "",
          {std::string("kestan ") + record.name + " delete my.index notes.txt"},
          [&record](Kestan& engine, const Values& values) {
            return RunDelete(engine, record, values);
          }};
}

}  // namespace kestan_cli
