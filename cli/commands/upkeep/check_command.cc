#include <kestan/maintenance.h>

#include <string>
#include <string_view>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_examination.h"

namespace kestan_cli {
namespace {

// Prints the lines of a check as they come, or collects them for JSON.
class CheckLines {
 public:
  explicit CheckLines(ReportFormat format) : format_(format) {}

  void Take(std::string_view line) {
    if (format_ == ReportFormat::kJson) lines_.push_back(std::string(line));
    if (format_ == ReportFormat::kText) printer_.Take(line);
  }

  void Finish() { printer_.Finish(); }
  const Json& lines() const { return lines_; }

 private:
  const ReportFormat format_;
  LinePrinter printer_;
  Json lines_ = Json::array();
};

int RunCheck(Kestan&, const Values& values) {
  const std::string index = values.Text("INDEX");
  ExamineIndex(index, Access::kInspect);
  Database store;
  OpenStore(store, index, Access::kRead);
  const ReportFormat format = ReportFormatOf(values);
  CheckLines lines(format);
  const kestan::CheckResult result =
      kestan::CheckIndex(store, [&](std::string_view line) { lines.Take(line); });
  lines.Finish();
  PrintReport(
      format,
      [&] {
        return JsonReport(
            {{"faults", result.faults}, {"notes", result.notes}, {"lines", lines.lines()}});
      },
      [&] {
        return Counted(result.faults, "fault") + ", " + Counted(result.notes, "note") + "\n";
      });
  return result.faults == 0 ? kDone : kFaultsFound;
}

}  // namespace

Command CheckCommand() {
  return {"check",
          "Tell whether the records of an index agree with each other.",
          {IndexArgument()},
          {JsonOption(), {"-q,--quiet", "", "say nothing; the exit status tells"}},
          "Prints \"KEY: what is wrong\" and \"KEY: note: what is worth a look\". Exit status: 0 "
          "without faults, 1 with some, 2 if the file is no index.",
          {"kestan check my.index"},
          RunCheck};
}

}  // namespace kestan_cli
