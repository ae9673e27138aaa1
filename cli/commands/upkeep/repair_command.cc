#include <kestan/maintenance.h>

#include <string>
#include <string_view>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/atomic_create.h"
#include "cli/index/captured_stderr.h"
#include "cli/index/index_examination.h"

namespace kestan_cli {
namespace {

// Takes the findings of a repair: prints or collects their lines, and keeps why there is no new
// index.
class RepairFindings {
 public:
  explicit RepairFindings(const Values& values)
      : format_(ReportFormatOf(values)), with_saved_(values.Has("--all")) {}

  void Take(const kestan::Finding& finding) {
    using Kind = kestan::FindingKind;
    if (finding.kind == Kind::kCannotRead || finding.kind == Kind::kCannotWrite) {
      is_new_file_ = finding.kind == Kind::kCannotWrite;
      reason_ = finding.text;
    }
    if (finding.kind == Kind::kSaved && !with_saved_) return;
    if (format_ == ReportFormat::kNone) return;
    kestan::ReportAsLine(finding, [this](std::string_view line) {
      if (format_ == ReportFormat::kJson) {
        lines_.push_back(std::string(line));
      } else {
        printer_.Take(line);
      }
    });
  }

  CommandError Failure(const std::string& damaged, const std::string& target) const {
    if (is_new_file_) return CannotMake(target, reason_);
    return CommandError("cannot repair " + Quoted(damaged) + ": " + reason_);
  }

  void Finish() { printer_.Finish(); }
  const Json& lines() const { return lines_; }

 private:
  const ReportFormat format_;
  const bool with_saved_;
  LinePrinter printer_;
  Json lines_ = Json::array();
  bool is_new_file_ = false;  // that the reason is about
  std::string reason_;
};

std::string Summary(const kestan::RepairResult& result) {
  return "saved " + Counted(result.saved, "document") + ", " +
         std::to_string(result.words_missing) + " with words missing, " +
         std::to_string(result.half_written) + " half-written, " + std::to_string(result.lost) +
         " lost\n";
}

std::string JsonOf(const kestan::RepairResult& result, const Json& lines) {
  return JsonReport({{"saved", result.saved},
                     {"words_missing", result.words_missing},
                     {"half_written", result.half_written},
                     {"lost", result.lost},
                     {"records", result.records},
                     {"dropped", result.dropped},
                     {"was_damaged", result.was_damaged},
                     {"lines", lines}});
}

int RunRepair(Kestan&, const Values& values) {
  const std::string damaged = values.Text("DAMAGED");
  const std::string target = values.Text("NEW");
  RepairFindings findings(values);
  const auto report = [&](const kestan::Finding& finding) { findings.Take(finding); };
  kestan::RepairResult result;
  CheckFile(damaged);
  CreateAtomically(target, damaged, [&](const std::string& part) {
    const CapturedStderr lines_of_store;
    const int error =
        kestan::RepairIndexWithFindings(damaged.c_str(), part.c_str(), report, &result);
    if (error != 0) throw findings.Failure(damaged, target);
  });
  findings.Finish();
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(result, findings.lines()); },
      [&] { return Summary(result); });
  return result.words_missing + result.half_written + result.lost == 0 ? kDone : kIncomplete;
}

}  // namespace

Command RepairCommand() {
  return {"repair",
          "Make a new index of what a damaged one still holds.",
          {{"DAMAGED", "the damaged index, which stays as it is"},
           {"NEW", "the file to make, which must not be there"}},
          {{"-a,--all", "", "name the documents that were saved too"}, JsonOption(), QuietOption()},
          "Exit status: 0 if nothing was lost, 1 if something was.",
          {"kestan repair damaged.index my.index"},
          RunRepair};
}

}  // namespace kestan_cli
