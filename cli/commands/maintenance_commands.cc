// Looking after an index: check, repair, dump and load.
#include <kestan/maintenance.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/app/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/index/copied_index.h"
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

// `line` is the last that the library said: a path and the reason.
CommandError CannotRepair(const std::string& damaged, const std::string& target,
                          const std::string& part, const std::string& line) {
  const std::string reason = line.substr(line.rfind(": ") + 2);
  if (line.compare(0, part.size(), part) == 0) return CannotMake(target, reason);
  return CommandError("cannot repair " + Quoted(damaged) + ": " + reason);
}

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
  Json lines = Json::array();
  std::string last;
  LinePrinter printer;
  const bool as_json = values.Has("--json");
  const auto report = [&](std::string_view line) {
    last = line;
    const bool is_good_news = line.substr(0, 7) == "saved: ";
    if (is_good_news && !values.Has("--all")) return;
    if (as_json) lines.push_back(std::string(line));
    if (!as_json && !values.Has("--quiet")) printer.Take(line);
  };
  const std::string target = values.Text("NEW");
  kestan::RepairResult result;
  CheckFile(damaged);
  MakeWhole(target, damaged, [&](const std::string& part) {
    const CapturedStderr lines_of_store;
    if (kestan::RepairIndex(damaged.c_str(), part.c_str(), report, &result) == 0) return;
    throw CannotRepair(damaged, target, part, last);
  });
  printer.Finish();
  if (as_json) Print(JsonLine(JsonOf(result, lines)));
  if (!as_json && !values.Has("--quiet")) Print(Summary(result));
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

// The lines of a dump. Of one that is too long for a dump it gives as much as shows that.
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
  // Room for the longest line, for one byte more, and for the NUL that the stream puts behind.
  std::vector<char> text_ = std::vector<char>(kestan::kMaxDumpLineBytes + 2);
};

// Fills the new file at `part`, which is to become `path`, from the dump that `input` holds.
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
  MakeWhole(target, "", [&](const std::string& part) {
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
