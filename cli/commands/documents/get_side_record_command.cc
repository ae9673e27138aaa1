#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/documents/side_record_command.h"
#include "cli/console/json.h"
#include "cli/index/document_records.h"

namespace kestan_cli {
namespace {

int RunGet(Kestan& engine, const SideRecord& record, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string name = values.Text("NAME");
  const OpenedIndex opened(engine, index, Access::kRead);
  const char* const text = (engine.*record.get)(name.c_str());
  if (text == nullptr) {
    CheckIndexed(opened, name);
    throw NoSideRecord(record, name, index);
  }
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"name", name}, {record.name, text}});
      },
      [&] { return std::string(text) + "\n"; });
  return kDone;
}

}  // namespace

Command GetSideRecordCommand(const SideRecord& record) {
  return {
      std::string(record.name) + " get",
      std::string("Print a document's ") + record.noun + ".",
      {IndexArgument(), DocumentArgument()},
      {JsonOption()},
      "",
      {std::string("kestan ") + record.name + " get my.index notes.txt"},
      [&record](Kestan& engine, const Values& values) { return RunGet(engine, record, values); }};
}

}  // namespace kestan_cli
