// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"
#include "cli/index/new_index.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {
namespace {

using kestan::search::CompactionMeasure;
using kestan::search::IndexReader;
using kestan::search::IndexStatistics;

// ---- To as few segments as possible ----

std::string JsonOf(const CompactionMeasure& measure, bool dry_run) {
  return JsonReport({{"dry_run", dry_run},
                     {"bytes_before", measure.bytes_before},
                     {"bytes_after", measure.bytes_after},
                     {"segments_before", measure.segments_before},
                     {"segments_after", measure.segments_after}});
}

std::string TextOf(const CompactionMeasure& measure, bool dry_run) {
  return std::string(dry_run ? "would compact" : "compacted") + " from " +
         std::to_string(measure.bytes_before) + " to " + std::to_string(measure.bytes_after) +
         " bytes, from " + Counted(measure.segments_before, "segment") + " to " +
         std::to_string(measure.segments_after) + "\n";
}

IndexStatistics StatisticsOf(const std::string& index) {
  return ValueOf(IndexReader::Open(index), index).Statistics();
}

CompactionMeasure Measure(const std::string& index, ProgressStyle style) {
  NewIndex follower(index, "", "merging", style);
  const auto measure = kestan::search::MeasureCompaction(index, follower.progress());
  follower.Check(measure.status());
  return *measure;
}

CompactionMeasure Compact(const std::string& index, ProgressStyle style) {
  OpenedWriter writer(index, OpenedWriter::IfMissing::kFail, style);
  const IndexStatistics before = StatisticsOf(index);
  writer.Compact();
  const IndexStatistics after = StatisticsOf(index);
  return {before.bytes, after.bytes, before.segments, after.segments};
}

// ---- To one file ----

int WriteOneFile(const std::string& index, const std::string& file, const Values& values) {
  if (values.Has("--dry-run")) throw CommandError("--dry-run and --one-file exclude each other");
  NewIndex made(index, file, "merging", StyleOfStandardError(values.Has("--quiet")));
  made.Check(kestan::search::WriteIndexFile(index, file, made.progress()));
  const IndexStatistics statistics = StatisticsOf(file);
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"documents", statistics.documents}, {"bytes_after", statistics.bytes}});
      },
      [&] {
        return "wrote " + Counted(statistics.documents, "document") + " in " +
               std::to_string(statistics.bytes) + " bytes\n";
      });
  return kDone;
}

int RunCompact(const Values& values) {
  const std::string index = values.Text("INDEX");
  CheckIsFolder(index);
  if (values.Has("--one-file")) return WriteOneFile(index, values.Text("--one-file"), values);
  const bool dry_run = values.Has("--dry-run");
  const ProgressStyle style = StyleOfStandardError(values.Has("--quiet"));
  const CompactionMeasure measure = dry_run ? Measure(index, style) : Compact(index, style);
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(measure, dry_run); },
      [&] { return TextOf(measure, dry_run); });
  return kDone;
}

}  // namespace

Command CompactCommand() {
  Command command = {
      "compact",
      "Merge an index into as few segments as possible, without removed documents.",
      {IndexArgument()},
      {{"-n,--dry-run", "", "tell what it would give back, and change nothing"},
       {"--one-file", "FILE",
        "make an index of one file of it instead, for programs that link the engine alone; the "
        "index stays as it is"},
       JsonOption(),
       QuietOption()},
      "Ended by a signal, it leaves the index as it was. An index of one file has room for 65,535 "
      "documents; word lists, option flags and remembered options are not in it.",
      {"kestan compact my.index", "kestan compact --one-file small.index my.index"},
      RunCompact};
  command.aliases = {"shrink"};
  return command;
}

}  // namespace kestan_cli
