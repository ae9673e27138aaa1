// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/documents/side_record_command.h"
#include "cli/index/document_names.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {
namespace {

int RunSet(const SideRecord& record, const Values& values) {
  const std::string index = values.Text("INDEX");
  OpenedWriter opened(index, OpenedWriter::IfMissing::kFail, StyleOfStandardError(false));
  const std::string name = StoredName(opened.Read(), values.Text("NAME"), index);
  opened.Check(opened.writer().SetField(name, record.field, values.Text("TEXT")));
  opened.Commit();
  return kDone;
}

}  // namespace

Command SetSideRecordCommand(const SideRecord& record) {
  return {
      std::string(record.name) + " set",
      std::string("Set a document's ") + record.noun + ".",
      {IndexArgument(), DocumentArgument(), {"TEXT", "the new text; an empty one deletes it"}},
      {},
      "",
      {std::string("kestan ") + record.name + " set my.index notes.txt '" + record.example + "'"},
      [&record](const Values& values) { return RunSet(record, values); }};
}

}  // namespace kestan_cli
