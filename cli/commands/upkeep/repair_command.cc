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
#include "cli/index/new_index.h"

namespace kestan_cli {
namespace {

using kestan::search::RepairItem;
using kestan::search::RepairKind;
using kestan::search::RepairReport;

// How the engine calls what is about a document or a record; kFileNote for what is about a file.
kestan::FindingKind FindingKindOf(RepairKind kind) {
  using kestan::FindingKind;
  switch (kind) {
    case RepairKind::kSaved:
      return FindingKind::kSaved;
    case RepairKind::kWordsMissing:
      return FindingKind::kWordsMissing;
    case RepairKind::kHalfWritten:
      return FindingKind::kHalfWritten;
    case RepairKind::kLost:
      return FindingKind::kLost;
    case RepairKind::kLostCode:
      return FindingKind::kLostCode;
    case RepairKind::kRestored:
    case RepairKind::kNameTwice:
      return FindingKind::kRepairNote;
    case RepairKind::kDropped:
      return FindingKind::kDropped;
    case RepairKind::kTextLost:
      return FindingKind::kCannotRead;  // whose line is "NAME: WHAT"
    default:
      return FindingKind::kFileNote;
  }
}

// Prints the lines of a repair, or collects them for JSON.
class RepairLines {
 public:
  RepairLines(std::string index, const Values& values)
      : index_(std::move(index)),
        format_(ReportFormatOf(values)),
        with_saved_(values.Has("--all")) {
    while (index_.size() > 1 && index_.back() == '/') index_.pop_back();
  }

  void Take(const RepairItem& item) {
    if (item.kind == RepairKind::kSaved && !with_saved_) return;
    if (format_ == ReportFormat::kNone) return;
    const kestan::Finding finding = {kestan::Severity::kInfo, FindingKindOf(item.kind), item.name,
                                     item.text};
    kestan::ReportAsLine(finding, [&](std::string_view line) { Print(item, std::string(line)); });
  }

  void Finish() { printer_.Finish(); }
  const Json& lines() const { return lines_; }

 private:
  // What is not about a document says which file it is about.
  void Print(const RepairItem& item, std::string line) {
    const bool is_inside = item.file.compare(0, index_.size() + 1, index_ + "/") == 0;
    const bool is_document = item.kind <= RepairKind::kLostCode;
    constexpr std::string_view kNote = "note: ";
    if (item.kind == RepairKind::kTextLost) line.insert(0, "text lost: ");
    if (is_inside && !is_document && item.kind != RepairKind::kTextLost) {
      line.replace(
          0, kNote.size(),
          (item.is_loss ? "lost: " : "note: ") + item.file.substr(index_.size() + 1) + ": ");
    }
    if (format_ == ReportFormat::kJson) {
      lines_.push_back(line);
    } else {
      printer_.Take(line);
    }
  }

  std::string index_;
  const ReportFormat format_;
  const bool with_saved_;
  LinePrinter printer_{PrintIfRead};
  Json lines_ = Json::array();
};

std::string Summary(const RepairReport& report) {
  return "saved " + Counted(report.saved, "document") + ", " +
         std::to_string(report.words_missing) + " with words missing, " +
         std::to_string(report.half_written) + " half-written, " + std::to_string(report.lost) +
         " lost\n";
}

std::string JsonOf(const RepairReport& report, const Json& lines) {
  return JsonReport({{"saved", report.saved},
                     {"words_missing", report.words_missing},
                     {"half_written", report.half_written},
                     {"lost", report.lost},
                     {"losses", report.losses},
                     {"records", report.records},
                     {"dropped", report.dropped},
                     {"was_damaged", report.was_damaged},
                     {"lines", lines}});
}

CommandError CannotRepair(const std::string& damaged, const std::string& reason) {
  return CommandError("cannot repair " + Quoted(damaged) + ": " + reason);
}

int RunRepair(const Values& values) {
  const std::string damaged = values.Text("DAMAGED");
  const std::string target = values.Text("NEW");
  if (KindOfIndex(damaged) == IndexKind::kNone) throw CannotOpen(damaged, kNoSuchIndex);
  RepairLines lines(damaged, values);
  NewIndex made(damaged, target, "repairing", ProgressStyle::kNone);
  std::exception_ptr thrown;  // for exceptions end at the library
  const auto report = kestan::search::RepairIndex(damaged, target, [&](const RepairItem& item) {
    try {
      lines.Take(item);
    } catch (const std::exception&) {
      thrown = std::current_exception();
    }
    return thrown == nullptr && !Interruption::HasCome();
  });
  if (thrown != nullptr) std::rethrow_exception(thrown);
  if (report.status().code() == kestan::search::StatusCode::kDamaged) {
    throw CannotRepair(damaged, report.status().message());
  }
  made.Check(report.status());
  lines.Finish();
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(*report, lines.lines()); },
      [&] { return Summary(*report); });
  return report->losses == 0 ? kDone : kIncomplete;
}

}  // namespace

Command RepairCommand() {
  return {"repair",
          "Make a new index of what a damaged one still holds.",
          {{"DAMAGED", "the damaged index, which stays as it is"},
           {"NEW", "the index to make, which must not be there"}},
          {{"-a,--all", "", "name the documents that were saved too"}, JsonOption(), QuietOption()},
          "Of a folder, each damaged segment is salvaged by itself, and all that can be made again "
          "is. Exit status: 0 if nothing was lost, 1 if something was.",
          {"kestan repair damaged.index my.index"},
          RunRepair};
}

}  // namespace kestan_cli
