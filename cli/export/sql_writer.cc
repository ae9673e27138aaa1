// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/sql_writer.h"

#include <optional>

#include "cli/console/diagnostics.h"
#include "cli/console/message.h"
#include "cli/export/iso_time.h"
#include "cli/export/tsvector.h"

namespace kestan_cli {
namespace {

std::string QuotedIdentifier(const std::string& name) {
  std::string quoted = "\"";
  for (const char byte : name) {
    if (byte == '"') quoted += byte;
    quoted += byte;
  }
  return quoted + "\"";
}

// Appends a column of a line of COPY, in which a lone \N stands for nothing.
void AppendColumn(const std::optional<std::string>& text, char separator, std::string* line) {
  if (!text.has_value()) *line += "\\N";
  for (const char byte : text.value_or("")) {
    switch (byte) {
      case '\\':
        *line += "\\\\";
        break;
      case '\n':
        *line += "\\n";
        break;
      case '\r':
        *line += "\\r";
        break;
      case '\t':
        *line += "\\t";
        break;
      default:
        *line += byte;
    }
  }
  *line += separator;
}

std::string SqlText(const std::string& text, ExportNotes* notes) {
  return WithoutNuls(notes->Utf8(text), &notes->document_had_nul);
}

std::optional<std::string> SqlTextOrNothing(const std::string& text, ExportNotes* notes) {
  if (text.empty()) return std::nullopt;
  return SqlText(text, notes);
}

}  // namespace

SqlWriter::SqlWriter(const std::string& target) : table_(QuotedIdentifier(target)) {}

std::string SqlWriter::Begin() {
  return "\\set ON_ERROR_STOP on\n"
         "SET client_encoding = 'UTF8';\n"
         "BEGIN;\n"
         "CREATE TABLE " +
         table_ +
         " (\n"
         "  name text NOT NULL,\n"
         "  title text,\n"
         "  summary text,\n"
         "  time timestamptz NOT NULL,\n"
         "  words tsvector NOT NULL\n"
         ");\n"
         "COPY " +
         table_ + " (name, title, summary, time, words) FROM stdin;\n";
}

std::string SqlWriter::Add(const ExportedDocument& document, ExportNotes* notes) {
  const TsVector vector = MakeTsVector(document);
  const std::string losses = vector.losses.Text();
  if (!losses.empty()) ReportProblem(Quoted(document.info.name) + ": " + losses);
  notes->document_was_latin1 |= vector.was_latin1;
  notes->document_had_nul |= vector.had_nul;
  std::string line;
  AppendColumn(SqlText(document.info.name, notes), '\t', &line);
  AppendColumn(SqlTextOrNothing(document.info.title, notes), '\t', &line);
  AppendColumn(SqlTextOrNothing(document.info.summary, notes), '\t', &line);
  AppendColumn(IsoTime(document.info.added), '\t', &line);
  AppendColumn(vector.text, '\n', &line);
  return line;
}

std::string SqlWriter::End() {
  return "\\.\n"
         "CREATE INDEX ON " +
         table_ +
         " USING gin (words);\n"
         "COMMIT;\n";
}

}  // namespace kestan_cli
