// Looking after an index: check, repair, dump and load.
#include <kestan/maintenance.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/app/command_registry.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/index/atomic_create.h"
#include "cli/index/captured_stderr.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {
namespace {

// ---- check ----

int ReportCheck(const kestan::CheckResult& result, const Json& lines, const Values& values) {
  if (values.Has("--json")) {
    Print(JsonLine({{"schema", kJsonSchema},
                    {"faults", result.faults},
                    {"notes", result.notes},
                    {"lines", lines}}));
  } else if (!values.Has("--quiet")) {
    Print(Counted(result.faults, "fault") + ", " + Counted(result.notes, "note") + "\n");
  }
  return result.faults == 0 ? kDone : kNoHits;
}

int RunCheck(Kestan&, const Values& values) {
  const std::string index = values.Text("INDEX");
  ExamineIndex(index, Access::kInspect);
  Database store;
  OpenStore(store, index, Access::kRead);
  Json lines = Json::array();
  LinePrinter printer;
  const auto report = [&](std::string_view line) {
    if (values.Has("--json")) {
      lines.push_back(std::string(line));
    } else if (!values.Has("--quiet")) {
      printer.Take(line);
    }
  };
  const kestan::CheckResult result = kestan::CheckIndex(store, report);
  printer.Finish();
  return ReportCheck(result, lines, values);
}

// ---- repair ----

// Takes the findings of a repair: prints or collects their lines, and keeps why there is no new
// index.
class RepairFindings {
 public:
  explicit RepairFindings(const Values& values)
      : as_json_(values.Has("--json")),
        is_quiet_(values.Has("--quiet")),
        with_saved_(values.Has("--all")) {}

  void Take(const kestan::Finding& finding) {
    using Kind = kestan::FindingKind;
    if (finding.kind == Kind::kCannotRead || finding.kind == Kind::kCannotWrite) {
      is_new_file_ = finding.kind == Kind::kCannotWrite;
      reason_ = finding.text;
    }
    if (finding.kind == Kind::kSaved && !with_saved_) return;
    if (!as_json_ && is_quiet_) return;
    kestan::ReportAsLine(finding, [this](std::string_view line) {
      if (as_json_) {
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
  const bool as_json_;
  const bool is_quiet_;
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

Json JsonOf(const kestan::RepairResult& result, Json lines) {
  return {{"schema", kJsonSchema},
          {"saved", result.saved},
          {"words_missing", result.words_missing},
          {"half_written", result.half_written},
          {"lost", result.lost},
          {"records", result.records},
          {"dropped", result.dropped},
          {"was_damaged", result.was_damaged},
          {"lines", std::move(lines)}};
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
  if (values.Has("--json")) {
    Print(JsonLine(JsonOf(result, findings.lines())));
  } else if (!values.Has("--quiet")) {
    Print(Summary(result));
  }
  return result.words_missing + result.half_written + result.lost == 0 ? kDone : kNoHits;
}

// ---- dump and load ----

int RunDump(Kestan&, const Values& values) {
  const std::string index = values.Text("INDEX");
  ExamineIndex(index, Access::kRead);
  Database store;
  OpenStore(store, index, Access::kRead);
  LinePrinter printer;
  const int error = kestan::DumpIndex(store, [&](std::string_view line) { printer.Take(line); });
  printer.Finish();
  if (error != 0) throw CannotRead(index, error);
  return kDone;
}

// Gives the lines of a dump. Of a line that is too long, it gives one byte more than is allowed.
class DumpLines {
 public:
  explicit DumpLines(std::istream& input) : input_(input) {}

  bool Give(std::string_view* line) {
    input_.getline(text_.data(), static_cast<std::streamsize>(text_.size()));
    const auto bytes = static_cast<std::size_t>(input_.gcount());
    if (bytes == 0) return false;
    const bool ended = !input_.fail() && !input_.eof();  // then its line feed counts as a byte
    *line = std::string_view(text_.data(), ended ? bytes - 1 : bytes);
    return true;
  }

 private:
  std::istream& input_;
  // Space for the longest line, one byte more, and the NUL that the stream puts after it.
  std::vector<char> text_ = std::vector<char>(kestan::kMaxDumpLineBytes + 2);
};

// Fills the new file at `part`, which will become `path`, from the dump in `input`.
void Load(std::istream& input, const std::string& part, const std::string& path,
          const std::string& shown) {
  const CapturedStderr lines_of_store;
  Database target;
  if (const int error = target.Open(part.c_str(), 1); error != 0) {
    throw CannotMake(path, Database::ErrorString(error));
  }
  DumpLines lines(input);
  const auto give = [&](std::string_view* line) { return lines.Give(line); };
  std::string reason;
  const bool loaded =
      kestan::LoadIndex(give, target, [&](std::string_view line) { reason = line; });
  if (!loaded) throw CommandError("cannot load " + Quoted(shown) + ": " + reason);
}

int RunLoad(Kestan&, const Values& values) {
  const std::string source = values.Text("FILE", "-");
  const std::string target = values.Text("NEW");
  std::ifstream file;
  if (source != "-") {
    std::error_code error;
    const bool is_folder = std::filesystem::is_directory(source, error);  // which opens like a file
    if (!is_folder) file.open(source, std::ios::binary);
    if (!file.is_open()) {
      throw CommandError("cannot read " + Quoted(source) + ": " +
                         ReasonOf(is_folder ? EISDIR : errno));
    }
  }
  CreateAtomically(target, "", [&](const std::string& part) {
    Load(source == "-" ? std::cin : file, part, target, source == "-" ? "standard input" : source);
  });
  return kDone;
}

}  // namespace

std::vector<Command> MaintenanceCommands() {
  return {
      {"check",
       "Tell whether the records of an index agree with each other.",
       {IndexArgument()},
       {JsonOption(), {"-q,--quiet", "", "say nothing; the exit status tells"}},
       "Prints \"KEY: what is wrong\" and \"KEY: note: what is worth a look\". Exit status: 0 "
       "without faults, 1 with some, 2 if the file is no index.",
       {"kestan check my.index"},
       RunCheck},
      {"repair",
       "Make a new index of what a damaged one still holds.",
       {{"DAMAGED", "the damaged index, which stays as it is"},
        {"NEW", "the file to make, which must not be there"}},
       {{"-a,--all", "", "name the documents that were saved too"}, JsonOption(), QuietOption()},
       "Exit status: 0 if nothing was lost, 1 if something was.",
       {"kestan repair damaged.index my.index"},
       RunRepair},
      {"dump",
       "Print an index as text, which any machine can load.",
       {IndexArgument()},
       {},
       "",
       {"kestan dump my.index > my.dump"},
       RunDump},
      {"load",
       "Make an index of what `kestan dump` printed.",
       {{"NEW", "the file to make, which must not be there"},
        {"FILE", "the dump; without it, or with -, the standard input",
         Positional::Count::kOptional}},
       {},
       "",
       {"kestan load my.index my.dump"},
       RunLoad},
  };
}

}  // namespace kestan_cli
