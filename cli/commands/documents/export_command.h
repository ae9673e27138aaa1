// SPDX-License-Identifier: GPL-3.0-or-later
// `kestan export`: prints the documents of an index for another system.
#ifndef KESTAN_CLI_COMMANDS_DOCUMENTS_EXPORT_COMMAND_H_
#define KESTAN_CLI_COMMANDS_DOCUMENTS_EXPORT_COMMAND_H_

#include <string>

namespace kestan_cli {

enum class ExportForm {
  kJson,  // lines of JSON for the bulk interface of search servers
  kSql,   // a script for PostgreSQL's psql
};

struct ExportOptions {
  ExportForm form = ExportForm::kJson;
  std::string target = "kestan";  // the name of the index, or of the table, that is filled
};

// Prints the documents of `index` in ascending order of their codes. docs/export.md describes the
// forms. Reports what a form cannot hold, and text that is not UTF-8, which is read as Latin-1.
// Opens the file by itself: the engine's index must be closed or open for reading.
//   Returns  kDone.
//   Throws   CommandError if the target has no name or the index cannot be read. The output is then
//            incomplete; an incomplete script leaves the database as it was.
int RunExport(const std::string& index, const ExportOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_DOCUMENTS_EXPORT_COMMAND_H_
