// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/documents/index_command.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <unordered_set>
#include <utility>

#include "cli/commands/commands.h"
#include "cli/console/columns.h"
#include "cli/console/diagnostics.h"
#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/console/progress.h"
#include "cli/files/paths.h"
#include "cli/index/document_names.h"
#include "cli/index/index_errors.h"
#include "cli/sync/index_change.h"
#include "cli/sync/index_report.h"
#include "cli/sync/index_run.h"
#include "cli/sync/index_scope.h"
#include "cli/sync/root_choice.h"
#include "cli/sync/root_rules.h"
#include "cli/sync/root_trust.h"

namespace kestan_cli {
namespace {

using kestan::search::IndexReader;

// ---- What to do ----

std::vector<std::string> CanonicalPaths(const std::vector<std::string>& paths) {
  std::vector<std::string> canonical;
  canonical.reserve(paths.size());
  for (const std::string& path : paths) {
    if (path.empty()) throw CommandError("cannot read '': no such file or folder");
    canonical.push_back(CanonicalPath(path));
  }
  return canonical;
}

std::vector<std::string> PathsOf(const IndexOptions& options) {
  if (!options.paths_from_stdin) return CanonicalPaths(options.paths);
  if (!options.paths.empty()) throw CommandError("paths are read from the standard input: no PATH");
  if (options.forget) throw CommandError("lists of paths are not remembered: --forget takes PATHs");
  return CanonicalPaths(ReadPathList(stdin));
}

RootRequest RequestOf(const IndexOptions& options, std::vector<std::string> paths) {
  RootRequest request;
  request.paths = std::move(paths);
  if (!(options.reading == ReadingOptions())) request.reading = WithAbsolutePaths(options.reading);
  request.prune = options.prune;
  request.reset = options.reset;
  request.forget = options.forget;
  return request;
}

// Returns the roots that the index remembers. They may be damaged if the user replaces them all.
Roots RootsOf(const IndexReader* reader, const std::string& index, const RootRequest& request) {
  if (reader == nullptr) return {};
  try {
    return RememberedRoots(*reader, index);
  } catch (const CommandError&) {
    if (!request.reset || request.paths.empty()) throw;
  }
  return {};
}

// With no PATH, the index alone says which files are read.
void CheckMayChoose(const RootRequest& request, const Roots& remembered, const std::string& index) {
  if (!request.paths.empty() || remembered.empty()) return;
  const std::string reason = ReasonToDistrust(index);
  if (reason.empty()) return;
  throw CommandError("the PATHs that index " + Quoted(index) +
                     " remembers are not used: " + reason + "; name them");
}

struct Scope {
  IndexScope files;
  Roots roots;  // that the index is to remember
};

Scope ScopeOf(const IndexOptions& options, const RootRequest& request, const Roots& remembered,
              const std::string& index) {
  if (options.paths_from_stdin) {
    RootOptions given;
    given.is_given_now = request.reading.has_value();
    if (given.is_given_now) given.reading = *request.reading;
    given.prune = request.prune.value_or(false);
    return {IndexScope::OfList(request.paths, given, remembered), remembered};
  }
  CheckMayChoose(request, remembered, index);
  const RootChoice choice = ChooseRoots(request, remembered, index);
  return {IndexScope::OfRoots(choice, request.prune.value_or(false)), choice.roots};
}

// ---- Reports ----

// A file that is gone is not a failure if its document is removed. One that is ignored is still
// there.
void ForgetSkipsOf(const VanishedDocuments& vanished, const IndexScope& scope,
                   std::vector<Skip>* skips) {
  const auto is_removed = [&](const Skip& skip) {
    return skip.kind != SkipKind::kIgnored && vanished.names().count(skip.name) != 0 &&
           scope.Prunes(skip.name);
  };
  skips->erase(std::remove_if(skips->begin(), skips->end(), is_removed), skips->end());
}

bool IsFailed(const Skip& skip) { return IsFailure(skip.kind); }

// On a terminal, so many that the summary is still to be seen.
void ReportFailures(const IndexReport& report) {
  constexpr std::size_t kLinesOnTerminal = 10;
  const bool is_terminal = isatty(STDERR_FILENO) == 1;
  const std::size_t max_lines = is_terminal ? kLinesOnTerminal : std::string::npos;
  for (const std::string& line : FailureLines(report, max_lines)) ReportProblem(line);
}

void PrintIndexReport(const IndexReport& report, const IndexOptions& options) {
  const std::string reasons =
      options.why ? SkipLines(report.skips) + NoteLines(report.notes) : std::string();
  PrintReport(
      options.report, [&] { return ReportJson(report, options.why); },
      [&] {
        return reasons + Summary(report, OutputIsTerminal() ? ColumnsOfTerminal(STDOUT_FILENO) : 0);
      });
  if (options.report == ReportFormat::kNone) PrintIfRead(reasons);
}

// Counts the words that a document has now and none had before.
unsigned long CountNewWords(const IndexReader* before, const IndexReader& after,
                            const std::string& index) {
  using kestan::search::TermInfo;
  const auto terms = ValueOf(after.Terms(""), index);
  std::unordered_set<std::string> old_terms;
  if (before != nullptr) {
    for (TermInfo& info : ValueOf(before->Terms(""), index)) old_terms.insert(std::move(info.term));
  }
  const auto is_new = [&](const TermInfo& info) { return old_terms.count(info.term) == 0; };
  return static_cast<unsigned long>(std::count_if(terms.begin(), terms.end(), is_new));
}

void CountTotals(const IndexChange& change, bool has_changed, const IndexOptions& options,
                 IndexReport* report) {
  std::optional<IndexReader> opened;
  if (has_changed) opened.emplace(ValueOf(IndexReader::Open(change.path()), change.path()));
  const IndexReader* const reader = has_changed ? &*opened : change.before();
  if (reader == nullptr) return;
  const auto statistics = reader->Statistics();
  report->documents = static_cast<unsigned long>(statistics.documents);
  report->segments = static_cast<unsigned long>(statistics.segments);
  const bool may_have_new_words = report->added + report->updated != 0;
  if (options.report == ReportFormat::kJson && may_have_new_words) {
    report->new_words = CountNewWords(change.before(), *reader, change.path());
  }
}

// PATHs without anything to index are a mistake, unless they come from a list or may all be gone.
// They are not remembered.
void CheckSomethingDone(const IndexChange& change, const IndexOptions& options,
                        IndexReport* report) {
  const unsigned long done =
      report->added + report->updated + report->moved + report->removed + report->unchanged;
  const bool may_be_gone = options.prune.value_or(false) || options.forget || options.paths.empty();
  if (done != 0 || may_be_gone) return;
  CountTotals(change, false, options, report);
  if (!options.why) ReportFailures(*report);
  if (options.report == ReportFormat::kJson) {
    PrintIfRead(ReportJson(*report, options.why));
  } else if (options.why) {
    PrintIfRead(SkipLines(report->skips));
  }
  throw CommandError(NothingToIndex(report->skips));
}

// ---- The run ----

// Has the index remember `roots`, if there is an index by now.
void Remember(Roots roots, IndexChange& change) {
  if (change.before() == nullptr && !change.HasChanges()) return;
  SignConverters(change.path(), &roots);
  const std::string property = EncodeRoots(roots);
  const std::string old = change.before() == nullptr
                              ? ""
                              : ValueOf(change.before()->Property(kRootsProperty), change.path());
  if (property != old) change.SetProperty(kRootsProperty, property);
}

unsigned long CountOf(const IndexChange& change) {
  if (change.before() == nullptr) return 0;
  return static_cast<unsigned long>(change.before()->Statistics().documents);
}

// Empties the index, of which every root must be there to be read again.
void Empty(const Scan& scan, IndexChange& change) {
  if (!scan.missing.empty()) {
    throw CommandError("cannot read " + Quoted(*scan.missing.begin()) +
                       ", so nothing is read again; --forget takes it from the roots");
  }
  if (scan.files.empty()) throw CommandError("there are no files to make the index of");
  change.RemoveAll();
}

// Carries out what is to be done in `scope`, and adds the outcome for each file to `report`.
void Carry(Scope& scope, RootRules& rules, const IndexOptions& options, IndexChange& change,
           IndexReport* report) {
  Scan scan = scope.files.FindFiles(change.path());
  ChangePlan plan = PlanChanges(
      scan.files, change.Documents(),
      [&](const std::string& name) { return scope.files.HasVanished(name); },
      options.all || options.again);
  if (options.again) Empty(scan, change);
  ForgetSkipsOf(plan.vanished, scope.files, &scan.skips);
  report->skips = std::move(scan.skips);
  Progress progress(StyleOfStandardError(options.quiet), plan.to_read.size(), plan.bytes_to_read);
  const RunRules run_rules{
      [&](const std::string& name) -> const ReadingRules& { return rules.Of(name); },
      [&](const std::string& name) { return scope.files.Prunes(name); }};
  CarryOut(std::move(plan), run_rules, change, progress, report);
  if (options.again) report->removed = CountOf(change) - report->updated;
  progress.Clear();
  std::sort(report->skips.begin(), report->skips.end(),
            [](const Skip& left, const Skip& right) { return left.name < right.name; });
}

}  // namespace

int RunIndex(const std::string& index, const IndexOptions& options) {
  if (options.again && (!options.paths.empty() || options.paths_from_stdin)) {
    throw CommandError("--again is about all that the index remembers: no PATH");
  }
  const RootRequest request = RequestOf(options, PathsOf(options));
  const Interruption interruption;  // a signal must leave neither a converter nor a bar behind
  IndexChange change(index, StyleOfStandardError(options.quiet), options.language);
  Scope scope = ScopeOf(options, request, RootsOf(change.before(), index, request), index);
  RootRules rules(scope.files.reading(), index, options.converter_limits, options.max_file_bytes);
  for (const std::string& path : request.paths) {
    if (!request.forget) rules.Of(path);  // mistakes show now
  }
  IndexReport report;
  Carry(scope, rules, options, change, &report);
  CheckSomethingDone(change, options, &report);
  Remember(std::move(scope.roots), change);
  const bool has_changed = change.HasChanges();
  change.Commit();
  CountTotals(change, has_changed, options, &report);
  if (!options.why) ReportFailures(report);
  PrintIndexReport(report, options);
  const bool is_complete =
      report.notes.empty() && std::none_of(report.skips.begin(), report.skips.end(), IsFailed);
  return is_complete ? kDone : kIncomplete;
}

namespace {

int RunIndexCommand(const Values& values) {
  IndexOptions options;
  options.paths = values.All("PATH");
  options.paths_from_stdin = values.Has("--stdin0");
  options.reading.include = values.All("--include");
  options.reading.exclude = values.All("--exclude");
  options.reading.converters = values.All("--converter");
  options.reading.stop_words = values.Text("--stop-words");
  options.reading.strip_encoded = values.Has("--strip-encoded");
  options.reading.no_ignore = values.Has("--no-ignore");
  options.reading.archives = values.Has("--archives");
  if (values.Has("--prune") && values.Has("--no-prune")) {
    throw CommandError("--prune and --no-prune exclude each other");
  }
  if (values.Has("--prune")) options.prune = true;
  if (values.Has("--no-prune")) options.prune = false;
  options.language = values.Text("--language");
  options.reset = values.Has("--reset");
  options.forget = values.Has("--forget");
  options.all = values.Has("--all");
  options.again = values.Has("--again");
  options.quiet = values.Has("--quiet");
  options.why = values.Has("--why");
  options.report = ReportFormatOf(values);
  return RunIndex(values.Text("INDEX"), options);
}

std::vector<Option> IndexCommandOptions() {
  return {{"--prune", "", "remove the documents below the PATHs whose files are gone"},
          {"--no-prune", "", "keep them, from now on"},
          {"--include", "GLOB", "only files that match; may be given more than once"},
          {"--exclude", "GLOB", "no files that match, nor folders; may be given more than once"},
          {"--no-ignore", "", "also files that .gitignore, .ignore or version control leave out"},
          {"--converter", "EXT=COMMAND",
           "have COMMAND, with {} for the file, print the text of files that end in .EXT"},
          {"--stop-words", "LIST", "leave out the words of a file, or of the list \"english\""},
          {"--strip-encoded", "", "leave out blocks of uuencode and base64"},
          {"--archives", "", "make a document of each file in archives of zip and tar"},
          {"--language", "NAME",
           "find other forms of words as in this language (german or de, say), or in none"},
          {"--reset", "", "use none of the options that the index remembers"},
          {"--forget", "", "no longer bring the PATHs up to date; with --prune, remove them"},
          {"--stdin0", "", "read the paths from the standard input, each ended by a NUL"},
          {"--all", "", "index unchanged files again too"},
          {"--again", "", "make the whole index again, as after a new version"},
          {"--why", "", "name each file that was left out, and the reason"},
          JsonOption(),
          QuietOption()};
}

}  // namespace

Command IndexCommand() {
  return {"index",
          "Bring an index up to date with files; make it where there is none.",
          {IndexArgument(),
           {"PATH", "files, and folders with all that is below them", Positional::Count::kAny}},
          IndexCommandOptions(),
          "Only what has changed is read. The index remembers the PATHs and their options; without "
          "a PATH, all of them are brought up to date. Exit status: 0 when all is indexed, 1 if "
          "some files "
          "could not be, 2 if nothing was done.",
          {"kestan index my.index /usr/share/doc/bash", "kestan index my.index"},
          RunIndexCommand};
}

}  // namespace kestan_cli
