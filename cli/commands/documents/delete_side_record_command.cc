// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/documents/side_record_command.h"
#include "cli/index/document_names.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {
namespace {

using kestan::search::DocumentInfo;
using kestan::search::IndexReader;

int RunDelete(const SideRecord& record, const Values& values) {
  const std::string index = values.Text("INDEX");
  OpenedWriter opened(index, OpenedWriter::IfMissing::kFail, StyleOfStandardError(false));
  const IndexReader reader = opened.Read();
  const std::string name = StoredName(reader, values.Text("NAME"), index);
  const DocumentInfo document = ValueOf(reader.FindDocument(name), index);
  if ((document.*record.text).empty()) throw NoSideRecord(record, values.Text("NAME"), index);
  opened.Check(opened.writer().SetField(name, record.field, ""));
  opened.Commit();
  return kDone;
}

}  // namespace

Command DeleteSideRecordCommand(const SideRecord& record) {
  return {std::string(record.name) + " delete",
          std::string("Delete a document's ") + record.noun + ".",
          {IndexArgument(), DocumentArgument()},
          {},
          "",
          {std::string("kestan ") + record.name + " delete my.index notes.txt"},
          [&record](const Values& values) { return RunDelete(record, values); }};
}

}  // namespace kestan_cli
