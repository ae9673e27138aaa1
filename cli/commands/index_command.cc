#include "cli/commands/index_command.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <set>
#include <utility>

#include "cli/app/commands.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/console/progress.h"
#include "cli/extract/file_text.h"
#include "cli/extract/stop_words.h"
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
                                         const IndexFacts& facts) {
  if (!facts.had_documents) return {};
  const OpenedIndex opened(engine, index, Access::kRead);
  std::vector<IndexedDocument> documents = IndexedDocuments(engine);
  opened.CheckRead();
  return documents;
}

// Paths of a list may have vanished since it was made.
Scan ScanFor(const IndexOptions& options, const std::vector<std::string>& paths,
             const std::string& index) {
  const NameFilter filter{GlobsOf(options.include), GlobsOf(options.exclude)};
  return ScanPaths(paths, index, filter,
                   options.paths_from_stdin ? MissingPath::kSkip : MissingPath::kThrow);
}

// Files that vanished are no failure where their documents are to be removed for it.
void ForgetSkipsOf(const VanishedDocuments& vanished, std::vector<Skip>* skips) {
  const auto is_known = [&](const Skip& skip) { return vanished.names().count(skip.name) != 0; };
  skips->erase(std::remove_if(skips->begin(), skips->end(), is_known), skips->end());
}

// The engine removes an earlier version before it finds that there is no room for the new one.
void CheckRoom(const ChangePlan& plan, const ReadingRules& rules, const IndexFacts& facts,
               const std::string& index, bool quiet) {
  if (plan.to_read.size() <= facts.free_codes) return;
  Progress progress(StyleOfStandardError(quiet), plan.to_read.size(), plan.bytes_to_read);
  const unsigned long needed = CountCodesNeeded(plan, rules, progress);
  if (needed <= facts.free_codes) return;
  throw CommandError("index " + Quoted(index) + " has room for " +
                     Counted(facts.free_codes, "more document") + ", not for " +
                     std::to_string(needed) + "; shrinking it may make room");
}

bool IsFailed(const Skip& skip) { return IsFailure(skip.kind); }

void ReportFailures(const IndexReport& report) {
  for (const Skip& skip : report.skips) {
    if (IsFailed(skip)) Say("kestan: " + SkipLine(skip));
  }
  for (const Note& note : report.notes) Say("kestan: " + NoteLine(note));
}

void PrintReport(const IndexReport& report, const IndexOptions& options) {
  if (options.json) return Print(ReportJson(report, options.why));
  std::string lines;
  if (options.why) lines += SkipLines(report.skips) + NoteLines(report.notes);
  if (!options.quiet) lines += ReportLine(report);
  if (!lines.empty()) Print(lines);
}

// A list or a folder to prune may be empty for good reasons; a PATH is a mistake then.
void CheckSomethingDone(const IndexReport& report, const IndexOptions& options) {
  const unsigned long done =
      report.added + report.updated + report.moved + report.removed + report.unchanged;
  if (done != 0 || options.prune || options.paths_from_stdin) return;
  if (options.json) {
    Print(ReportJson(report, options.why));
  } else if (options.why) {
    Print(SkipLines(report.skips));
  }
  throw CommandError(NothingToIndex(report.skips));
}

}  // namespace

int RunIndex(Kestan& engine, const std::string& index, const IndexOptions& options) {
  IndexChange change(engine, index, Access::kCreate, WayOf(options.in_place, index));
  const IndexFacts& facts = change.facts();
  const Converters converters(options.converters);
  const ReadingRules rules{converters,
                           options.converter_limits,
                           std::min<std::uint64_t>(options.max_file_bytes, kMaxTextBytes),
                           {StopWords(options.stop_words), options.strip_encoded}};
  const std::vector<std::string> paths = PathsOf(options);
  Scan scan = ScanFor(options, paths, index);
  std::set<std::string> roots;
  for (const std::string& path : paths) roots.insert(NameOf(path));
  ChangePlan plan =
      PlanChanges(scan.files, DocumentsAt(engine, index, facts), roots, HasVanished, options.all);
  if (options.prune) ForgetSkipsOf(plan.vanished, &scan.skips);
  CheckRoom(plan, rules, facts, index, options.quiet);

  IndexReport report;
  report.skips = std::move(scan.skips);
  Progress progress(StyleOfStandardError(options.quiet), plan.to_read.size(), plan.bytes_to_read);
  IndexWriter writer(change);
  CarryOut(std::move(plan), rules, options.prune, writer, progress, &report);
  report.new_words = writer.Finish();
  progress.Clear();
  std::sort(report.skips.begin(), report.skips.end(),
            [](const Skip& left, const Skip& right) { return left.name < right.name; });

  if (!options.why) ReportFailures(report);
  CheckSomethingDone(report, options);
  PrintReport(report, options);
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
  options.json = values.Has("--json");
  options.in_place = values.Has("--in-place");
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

std::vector<Command> IndexCommands() {
  return {{"index",
           "Bring an index up to date with files; make it where there is none.",
           {IndexArgument(),
            {"PATH", "files, and folders with all that is below them", Positional::Count::kAny}},
           IndexCommandOptions(),
           "Only what has changed is read. Exit status: 0 when all is indexed, 1 if some files "
           "could not be, 2 if nothing was done.",
           {"kestan index my.index /usr/share/doc/bash"},
           RunIndexCommand}};
}

}  // namespace kestan_cli
