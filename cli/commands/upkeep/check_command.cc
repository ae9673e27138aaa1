// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance.h>
#include <kestan/search.h>

#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"

namespace kestan_cli {
namespace {

using kestan::search::CheckOptions;
using kestan::search::IndexFinding;
using kestan::search::IndexFindingKind;

// Prints the lines of a check as they come, or collects them for JSON.
class CheckLines {
 public:
  CheckLines(std::string index, IndexKind kind, ReportFormat format)
      : index_(std::move(index)), kind_(kind), format_(format) {
    while (index_.size() > 1 && index_.back() == '/') index_.pop_back();
  }

  void Take(const IndexFinding& finding) {
    const bool is_file = kind_ == IndexKind::kFile;
    // A report that this file is none of an index is no report on an index.
    if (is_file && finding.kind == IndexFindingKind::kNoIndexFile) {
      throw CannotOpen(index_, "not an index file (" + finding.text + ")" + kIfItWasOne);
    }
    if (format_ == ReportFormat::kNone) return;
    const auto kind =
        finding.is_fault ? kestan::FindingKind::kCheckFault : kestan::FindingKind::kCheckNote;
    const auto severity = finding.is_fault ? kestan::Severity::kFault : kestan::Severity::kNote;
    const std::string file = is_file ? std::string(kestan::kWholeFile) : NameOf(finding.file);
    const bool has_key = !finding.key.empty();
    kestan::ReportAsLine(
        {severity, kind, has_key ? finding.key : file, finding.text}, [&](std::string_view line) {
          Print(has_key && !is_file ? file + ": " + std::string(line) : std::string(line));
        });
  }

  void Finish() { printer_.Finish(); }
  const Json& lines() const { return lines_; }

 private:
  // Returns the name that a file has in the folder.
  std::string NameOf(const std::string& file) const {
    const bool is_inside = file.compare(0, index_.size() + 1, index_ + "/") == 0;
    return is_inside ? file.substr(index_.size() + 1) : file;
  }

  void Print(const std::string& line) {
    if (format_ == ReportFormat::kJson) lines_.push_back(line);
    if (format_ == ReportFormat::kText) printer_.Take(line);
  }

  std::string index_;
  const IndexKind kind_;
  const ReportFormat format_;
  LinePrinter printer_{PrintIfRead};
  Json lines_ = Json::array();
};

int RunCheck(const Values& values) {
  const std::string index = values.Text("INDEX");
  const IndexKind kind = KindOfIndex(index);
  if (kind == IndexKind::kNone) throw CannotOpen(index, kNoSuchIndex);
  const ReportFormat format = ReportFormatOf(values);
  CheckLines lines(index, kind, format);
  CheckOptions options;
  options.most_findings = 0;
  std::exception_ptr thrown;
  options.take = [&](const IndexFinding& finding) {
    try {
      if (thrown == nullptr) lines.Take(finding);
    } catch (const std::exception&) {
      thrown = std::current_exception();
    }
  };
  const auto report = kestan::search::CheckIndex(index, options);
  if (thrown != nullptr) std::rethrow_exception(thrown);
  CheckStatus(report.status(), index);
  lines.Finish();
  PrintReport(
      format,
      [&] {
        return JsonReport(
            {{"faults", report->faults}, {"notes", report->notes}, {"lines", lines.lines()}});
      },
      [&] {
        return Counted(report->faults, "fault") + ", " + Counted(report->notes, "note") + "\n";
      });
  return report->faults == 0 ? kDone : kFaultsFound;
}

}  // namespace

Command CheckCommand() {
  return {"check",
          "Tell whether an index is whole, and whether its records agree with each other.",
          {IndexArgument()},
          {JsonOption(), {"-q,--quiet", "", "say nothing; the exit status tells"}},
          "Prints \"KEY: what is wrong\" and \"KEY: note: what is worth a look\", in a folder "
          "with the name of the file first. Every changed byte of a folder is found. Exit status: "
          "0 without faults, 1 with some, 2 if it is no index.",
          {"kestan check my.index"},
          RunCheck};
}

}  // namespace kestan_cli
