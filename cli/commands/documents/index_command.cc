#include "cli/commands/documents/index_command.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <set>
#include <utility>

#include "cli/commands/commands.h"
#include "cli/console/diagnostics.h"
#include "cli/console/message.h"
#include "cli/console/progress.h"
#include "cli/extract/document/stop_words.h"
#include "cli/extract/file_text.h"
#include "cli/files/paths.h"
#include "cli/files/scan.h"
#include "cli/index/opened_index.h"
#include "cli/sync/change_plan.h"
#include "cli/sync/index_report.h"
#include "cli/sync/index_run.h"
#include "cli/sync/index_writer.h"

namespace kestan_cli {
namespace {

std::vector<Glob> GlobsOf(const std::vector<std::string>& patterns) {
  std::vector<Glob> globs;
  globs.reserve(patterns.size());
  for (const std::string& pattern : patterns) globs.emplace_back(pattern);
  return globs;
}

std::vector<std::string> PathsOf(const IndexOptions& options) {
  if (!options.paths_from_stdin) {
    if (options.paths.empty()) throw CommandError("nothing to index: no PATH");
    return options.paths;
  }
  if (!options.paths.empty()) throw CommandError("paths are read from the standard input: no PATH");
  return ReadPathList(stdin);
}

std::vector<IndexedDocument> DocumentsAt(Kestan& engine, const std::string& index,
                                         const kestan::DocumentCounts& counts) {
  if (!counts.had_documents) return {};
  const OpenedIndex opened(engine, index, Access::kRead);
  std::vector<IndexedDocument> documents = IndexedDocuments(engine);
  opened.CheckRead();
  return documents;
}

// A path of a list may have been removed since the list was made.
Scan ScanFor(const IndexOptions& options, const std::vector<std::string>& paths,
             const std::string& index) {
  const NameFilter filter{GlobsOf(options.include), GlobsOf(options.exclude)};
  return ScanPaths(paths, index, filter,
                   options.paths_from_stdin ? MissingPath::kSkip : MissingPath::kThrow);
}

// A file that is gone is not a failure if its document is removed.
void ForgetSkipsOf(const VanishedDocuments& vanished, std::vector<Skip>* skips) {
  const auto is_removed = [&](const Skip& skip) { return vanished.names().count(skip.name) != 0; };
  skips->erase(std::remove_if(skips->begin(), skips->end(), is_removed), skips->end());
}

// Makes sure before the change that there are codes for all new documents: the engine removes the
// earlier version of a document even if there is none for the new one.
void CheckFreeCodes(const ChangePlan& plan, const ReadingRules& rules,
                    const kestan::DocumentCounts& counts, const std::string& index, bool quiet) {
  if (plan.to_read.size() <= counts.free_codes) return;
  Progress progress(StyleOfStandardError(quiet), plan.to_read.size(), plan.bytes_to_read);
  const unsigned long needed = CountCodesNeeded(plan, rules, progress);
  if (needed <= counts.free_codes) return;
  throw CommandError("index " + Quoted(index) + " has room for " +
                     Counted(counts.free_codes, "more document") + ", not for " +
                     std::to_string(needed) + "; shrinking it may make room");
}

bool IsFailed(const Skip& skip) { return IsFailure(skip.kind); }

void ReportFailures(const IndexReport& report) {
  for (const Skip& skip : report.skips) {
    if (IsFailed(skip)) ReportProblem(SkipLine(skip));
  }
  for (const Note& note : report.notes) ReportProblem(NoteLine(note));
}

void PrintIndexReport(const IndexReport& report, const IndexOptions& options) {
  const std::string reasons =
      options.why ? SkipLines(report.skips) + NoteLines(report.notes) : std::string();
  PrintReport(
      options.report, [&] { return ReportJson(report, options.why); },
      [&] { return reasons + ReportLine(report); });
  if (options.report == ReportFormat::kNone) Print(reasons);
}

// PATHs without anything to index are a mistake, unless they come from a list or may all be gone.
void CheckSomethingDone(const IndexReport& report, const IndexOptions& options) {
  const unsigned long done =
      report.added + report.updated + report.moved + report.removed + report.unchanged;
  if (done != 0 || options.prune || options.paths_from_stdin) return;
  if (options.report == ReportFormat::kJson) {
    Print(ReportJson(report, options.why));
  } else if (options.why) {
    Print(SkipLines(report.skips));
  }
  throw CommandError(NothingToIndex(report.skips));
}

ReadingRules RulesOf(const IndexOptions& options, const Converters& converters) {
  return {converters,
          options.converter_limits,
          std::min<std::uint64_t>(options.max_file_bytes, kMaxTextBytes),
          {StopWords(options.stop_words), options.strip_encoded}};
}

std::set<std::string> NamesOf(const std::vector<std::string>& paths) {
  std::set<std::string> names;
  for (const std::string& path : paths) names.insert(NameOf(path));
  return names;
}

// Carries out `plan`, and adds the outcome for each file to `report`.
void Carry(ChangePlan plan, const ReadingRules& rules, const IndexOptions& options,
           IndexTransaction& transaction, IndexReport* report) {
  Progress progress(StyleOfStandardError(options.quiet), plan.to_read.size(), plan.bytes_to_read);
  IndexWriter writer(transaction);
  CarryOut(std::move(plan), rules, options.prune, writer, progress, report);
  report->new_words = writer.Finish();
  progress.Clear();
  std::sort(report->skips.begin(), report->skips.end(),
            [](const Skip& left, const Skip& right) { return left.name < right.name; });
}

}  // namespace

int RunIndex(Kestan& engine, const std::string& index, const IndexOptions& options) {
  IndexTransaction transaction(engine, index, Access::kCreate, options.mode);
  const Converters converters(options.converters);
  const ReadingRules rules = RulesOf(options, converters);
  const std::vector<std::string> paths = PathsOf(options);
  Scan scan = ScanFor(options, paths, index);
  ChangePlan plan = PlanChanges(scan.files, DocumentsAt(engine, index, transaction.counts()),
                                NamesOf(paths), HasVanished, options.all);
  if (options.prune) ForgetSkipsOf(plan.vanished, &scan.skips);
  CheckFreeCodes(plan, rules, transaction.counts(), index, options.quiet);
  IndexReport report;
  report.skips = std::move(scan.skips);
  Carry(std::move(plan), rules, options, transaction, &report);
  if (!options.why) ReportFailures(report);
  CheckSomethingDone(report, options);
  PrintIndexReport(report, options);
  const bool is_complete =
      report.notes.empty() && std::none_of(report.skips.begin(), report.skips.end(), IsFailed);
  return is_complete ? kDone : kIncomplete;
}

namespace {

int RunIndexCommand(Kestan& engine, const Values& values) {
  IndexOptions options;
  options.paths = values.All("PATH");
  options.paths_from_stdin = values.Has("--stdin0");
  options.include = values.All("--include");
  options.exclude = values.All("--exclude");
  options.converters = values.All("--converter");
  options.stop_words = values.Text("--stop-words");
  options.strip_encoded = values.Has("--strip-encoded");
  options.prune = values.Has("--prune");
  options.all = values.Has("--all");
  options.quiet = values.Has("--quiet");
  options.why = values.Has("--why");
  options.report = ReportFormatOf(values);
  options.mode = UpdateModeOf(values.Has("--in-place"));
  return RunIndex(engine, values.Text("INDEX"), options);
}

std::vector<Option> IndexCommandOptions() {
  return {{"--prune", "", "remove the documents below the PATHs whose files are gone"},
          {"--include", "GLOB", "only files that match; may be given more than once"},
          {"--exclude", "GLOB", "no files that match, nor folders; may be given more than once"},
          {"--stdin0", "", "read the paths from the standard input, each ended by a NUL"},
          {"--converter", "EXT=COMMAND",
           "have COMMAND, with {} for the file, print the text of files that end in .EXT"},
          {"--stop-words", "LIST", "leave out the words of a file, or of the list \"english\""},
          {"--strip-encoded", "", "leave out blocks of uuencode and base64"},
          {"--all", "", "index unchanged files anew too"},
          {"--why", "", "name each file that was left out, and the reason"},
          JsonOption(),
          InPlaceOption(),
          QuietOption()};
}

}  // namespace

Command IndexCommand() {
  return {"index",
          "Bring an index up to date with files; make it where there is none.",
          {IndexArgument(),
           {"PATH", "files, and folders with all that is below them", Positional::Count::kAny}},
          IndexCommandOptions(),
          "Only what has changed is read. Exit status: 0 when all is indexed, 1 if some files "
          "could not be, 2 if nothing was done.",
          {"kestan index my.index /usr/share/doc/bash"},
          RunIndexCommand};
}

}  // namespace kestan_cli
