// SPDX-License-Identifier: GPL-3.0-or-later
// `kestan index`: brings an index up to date with files.
#ifndef KESTAN_CLI_COMMANDS_DOCUMENTS_INDEX_COMMAND_H_
#define KESTAN_CLI_COMMANDS_DOCUMENTS_INDEX_COMMAND_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/console/report.h"
#include "cli/extract/converter/limited_command.h"
#include "cli/sync/roots.h"

namespace kestan_cli {

struct IndexOptions {
  std::vector<std::string> paths;  // files, and folders with everything below them; none: all roots
  bool paths_from_stdin = false;   // paths are read from the standard input, each ended by a NUL
  ReadingOptions reading;          // empty: as the index remembers
  std::optional<bool> prune;  // remove documents whose files are gone; nothing: as it remembers
  bool reset = false;         // of the options, what is not given is not remembered either
  bool forget = false;        // the paths are roots no more
  std::string language;       // of the words; empty: as the index has it, or a guess
  CommandLimits converter_limits;
  std::uint64_t max_file_bytes = std::uint64_t{1} << 28;  // of a text
  bool all = false;                                       // unchanged files are indexed again
  bool again = false;  // into an index that is emptied before, as after a new version
  bool quiet = false;  // no progress
  bool why = false;    // one line for each file that was left out, even without a report
  ReportFormat report = ReportFormat::kText;
};

// Brings the index at `index` up to date with the files of `options`, each under its canonical
// path, all at once or not at all. Prints a report, and reports the files that could not be
// indexed.
//   Returns  kDone; kIncomplete if any file was left out or cut that should have been indexed.
//   Throws   CommandError: if a path is missing, an option is invalid, there is nothing to index,
//            or the index cannot be changed. Interrupted if a signal has come.
int RunIndex(const std::string& index, const IndexOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_DOCUMENTS_INDEX_COMMAND_H_
