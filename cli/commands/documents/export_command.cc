// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/documents/export_command.h"

#include <kestan/search.h>

#include <exception>
#include <memory>

#include "cli/commands/commands.h"
#include "cli/console/diagnostics.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/export/json_writer.h"
#include "cli/export/sql_writer.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kBytesPrintedAtOnce = std::size_t{1} << 20;

// Documents that the export cannot print whole.
struct Loss {
  void Count(const ExportedDocument& document) {
    if (count++ == 0) first = document.info.name;
  }

  // Reports what is missing or changed, if anything is.
  void Report(const std::string& what) const {
    if (count == 0) return;
    ReportProblem("in " + Counted(count, "document") + ", the first of them " + Quoted(first) +
                  ", " + what);
  }

  unsigned long count = 0;
  std::string first;
};

class Exporter {
 public:
  explicit Exporter(ExportWriter& writer) : writer_(writer), waiting_(writer.Begin()) {}

  void Add(const ExportedDocument& document) {
    ExportNotes notes;
    waiting_ += writer_.Add(document, &notes);
    if (notes.document_was_latin1) not_utf8_.Count(document);
    if (notes.document_had_nul) with_nul_.Count(document);
    if (!document.has_positions) without_positions_.Count(document);
    if (waiting_.size() >= kBytesPrintedAtOnce) PrintWaiting();
  }

  void Finish() {
    waiting_ += writer_.End();
    PrintWaiting();
    not_utf8_.Report("text that is not UTF-8 was read as Latin-1");
    with_nul_.Report("NUL bytes were replaced by U+FFFD");
    without_positions_.Report("the words are without order, for the index keeps no positions");
  }

 private:
  void PrintWaiting() {
    Print(waiting_);
    waiting_.clear();
  }

  ExportWriter& writer_;
  std::string waiting_;
  Loss not_utf8_;
  Loss with_nul_;
  Loss without_positions_;
};

std::unique_ptr<ExportWriter> MakeWriter(const ExportOptions& options) {
  if (options.target.empty() || !kestan::search::IsUtf8(options.target)) {
    throw CommandError("the name of the target is empty or not UTF-8");
  }
  if (options.form == ExportForm::kSql) return std::make_unique<SqlWriter>(options.target);
  return std::make_unique<JsonWriter>(options.target);
}

}  // namespace

int RunExport(const std::string& index, const ExportOptions& options) {
  const std::unique_ptr<ExportWriter> writer = MakeWriter(options);
  const kestan::search::IndexReader reader = OpenReader(index);
  const bool has_positions = reader.Statistics().with_positions;
  Exporter exporter(*writer);
  std::exception_ptr failure;  // the library passes none on
  const auto status = reader.ForEachDocumentWithWords([&](const auto& document, const auto& words) {
    try {
      exporter.Add({document, words, has_positions});
    } catch (...) {
      failure = std::current_exception();
    }
    return failure == nullptr;
  });
  if (failure != nullptr) std::rethrow_exception(failure);
  CheckStatus(status, index);
  exporter.Finish();
  return kDone;
}

namespace {

int RunExportCommand(const Values& values) {
  ExportOptions options;
  options.form = values.Text("FORM") == "sql" ? ExportForm::kSql : ExportForm::kJson;
  options.target = values.Text("NAME", options.target);
  if (options.form == ExportForm::kJson && values.Text("FORM") != "json") {
    throw CommandError("no form " + Quoted(values.Text("FORM")) + "; there are json and sql");
  }
  return RunExport(values.Text("INDEX"), options);
}

}  // namespace

Command ExportCommand() {
  return {"export",
          "Print the documents of an index for another system to take in.",
          {IndexArgument(),
           {"FORM",
            "json: lines for the bulk interface of search servers; sql: a script for "
            "PostgreSQL"},
           {"NAME", "the index or the table there; kestan, if not given",
            Positional::Count::kOptional}},
          {},
          "What a form cannot hold is reported on the standard error stream.",
          {"kestan export my.index sql texts | psql"},
          RunExportCommand};
}

}  // namespace kestan_cli
