// `kestan index`: brings an index up to date with files.
#ifndef KESTAN_CLI_COMMANDS_DOCUMENTS_INDEX_COMMAND_H_
#define KESTAN_CLI_COMMANDS_DOCUMENTS_INDEX_COMMAND_H_

#include <kestan/kestan.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cli/console/report.h"
#include "cli/extract/converter/limited_command.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {

struct IndexOptions {
  std::vector<std::string> paths;  // files, and directories with everything below them
  bool paths_from_stdin = false;   // paths are read from the standard input, each ended by a NUL
  std::vector<std::string> include;
  std::vector<std::string> exclude;
  std::vector<std::string> converters;  // "EXT=COMMAND", with {} for the file
  CommandLimits converter_limits;
  std::uint64_t max_file_bytes = std::uint64_t{1} << 28;  // of a text; the engine takes 2^31 - 2
  std::string stop_words;                                 // "english", a file, or "" for none
  bool strip_encoded = false;  // blocks of uuencode and base64 are left out
  bool prune = false;          // documents below the paths are removed if their files are gone
  bool all = false;            // unchanged files are indexed again
  bool quiet = false;          // no progress
  bool why = false;            // one line for each file that was left out, even without a report
  ReportFormat report = ReportFormat::kText;
  UpdateMode mode = UpdateMode::kOnCopy;
};

// Indexes the files of `options` that are new or have changed since they were indexed, each under
// its path. Prints a report, and reports the files that could not be indexed.
//   Returns  kDone; kIncomplete if any file was left out or cut that should have been indexed.
//   Throws   CommandError: if a path is missing, an option is invalid, there is nothing to index,
//            the index has too few free document codes, or its file refuses a record.
int RunIndex(Kestan& engine, const std::string& index, const IndexOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_DOCUMENTS_INDEX_COMMAND_H_
