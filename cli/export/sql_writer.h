// SPDX-License-Identifier: GPL-3.0-or-later
// Documents as a script for PostgreSQL.
#ifndef KESTAN_CLI_EXPORT_SQL_WRITER_H_
#define KESTAN_CLI_EXPORT_SQL_WRITER_H_

#include <string>

#include "cli/export/export_writer.h"

namespace kestan_cli {

// Writes a script for psql, which makes a table and fills it.
class SqlWriter : public ExportWriter {
 public:
  // `target` is the name of the table.
  explicit SqlWriter(const std::string& target);

  std::string Begin() override;
  std::string Add(const ExportedDocument& document, ExportNotes* notes) override;
  std::string End() override;

 private:
  const std::string table_;  // quoted
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_SQL_WRITER_H_
