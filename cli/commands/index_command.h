// `kestan index`: brings an index up to date with files.
#ifndef KESTAN_CLI_COMMANDS_INDEX_COMMAND_H_
#define KESTAN_CLI_COMMANDS_INDEX_COMMAND_H_

#include <kestan/kestan.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cli/extract/converter/limited_command.h"

namespace kestan_cli {

struct IndexOptions {
  std::vector<std::string> paths;  // files, and folders with all that is below them
  bool paths_from_stdin = false;   // instead: from the standard input, each ended by a NUL
  std::vector<std::string> include;
  std::vector<std::string> exclude;
  std::vector<std::string> converters;  // "EXT=COMMAND", {} in it for the file
  CommandLimits converter_limits;
  std::uint64_t max_file_bytes = std::uint64_t{1} << 28;  // of a text; the engine takes 2^31 - 2
  std::string stop_words;                                 // "english", a file, or "" for none
  bool strip_encoded = false;  // blocks of uuencode and base64 are left out
  bool prune = false;          // documents below the paths whose files have vanished are removed
  bool all = false;            // unchanged files are indexed anew too
  bool quiet = false;          // no progress and no report; those asked for by name are given
  bool why = false;            // a line for each file that was left out
  bool json = false;           // the report as JSON
  bool in_place = false;       // no copy takes the place of the index
};

// Status of a run that left out files, or parts of them, that it should have indexed.
constexpr int kIncomplete = 1;

// Indexes the files of `options` that the index at `index` does not have as they are now, each
// under its path. Prints a report, and on the standard error stream what could not be indexed.
//   Returns  kDone or kIncomplete.
//   Throws   CommandError: if a path is missing, an option cannot be read, there is nothing to
//            index, the index has no room for all, or its file refuses a record.
int RunIndex(Kestan& engine, const std::string& index, const IndexOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_INDEX_COMMAND_H_
