// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/documents/side_record_command.h"
#include "cli/console/json.h"
#include "cli/index/document_names.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

int RunGet(const SideRecord& record, const Values& values) {
  const std::string index = values.Text("INDEX");
  const kestan::search::IndexReader reader = OpenReader(index);
  const std::string name = StoredName(reader, values.Text("NAME"), index);
  const auto document = ValueOf(reader.FindDocument(name), index);
  const std::string& text = document.*record.text;
  if (text.empty()) throw NoSideRecord(record, name, index);
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"name", name}, {record.name, text}});
      },
      [&] { return text + "\n"; });
  return kDone;
}

}  // namespace

Command GetSideRecordCommand(const SideRecord& record) {
  return {std::string(record.name) + " get",
          std::string("Print a document's ") + record.noun + ".",
          {IndexArgument(), DocumentArgument()},
          {JsonOption()},
          "",
          {std::string("kestan ") + record.name + " get my.index notes.txt"},
          [&record](const Values& values) { return RunGet(record, values); }};
}

}  // namespace kestan_cli
