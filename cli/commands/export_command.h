// The documents of an index, for another system to take in.
#ifndef KESTAN_CLI_COMMANDS_EXPORT_COMMAND_H_
#define KESTAN_CLI_COMMANDS_EXPORT_COMMAND_H_

#include <kestan/kestan.h>

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

// Prints the documents of `index` in the form and for the target of `options`, by the order of
// their codes. docs/export.md says what each form holds. What a form cannot hold is told in lines
// on the standard error stream, and so is text that is not UTF-8, which is read as Latin-1. Opens
// the file by itself: `engine` is not needed, and its index must be closed or open for reading.
//   Returns  the exit status, which is 0.
//   Throws   CommandError if the target has no name or the index cannot be read. Then what was
//            printed is not the whole; the script leaves the database as it was.
int RunExport(Kestan& engine, const std::string& index, const ExportOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_EXPORT_COMMAND_H_
