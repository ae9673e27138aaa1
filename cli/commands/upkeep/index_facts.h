// SPDX-License-Identifier: GPL-3.0-or-later
// What `kestan stats` tells of an index of either kind.
#ifndef KESTAN_CLI_COMMANDS_UPKEEP_INDEX_FACTS_H_
#define KESTAN_CLI_COMMANDS_UPKEEP_INDEX_FACTS_H_

#include <cstdint>
#include <string>
#include <vector>

namespace kestan_cli {

// A number that describes an index.
struct Fact {
  const char* name;   // in JSON
  const char* words;  // in text
  std::uint64_t number;
};

// The words that occur in `low` to `high` documents.
struct FrequencyRow {
  std::uint64_t low;
  std::uint64_t high;
  std::uint64_t words;
  std::uint64_t postings;
};

// A file or folder that the index is kept up to date with, as `kestan index` remembers it.
struct RememberedRoot {
  std::string path;
  std::vector<std::string> options;  // as on the command line
};

struct IndexFacts {
  std::vector<Fact> counts;
  bool positions_kept = true;
  std::string language;     // whose word forms are found, or "none"; only of folders
  std::vector<Fact> sizes;  // in bytes
  std::vector<FrequencyRow> frequencies;
  bool is_folder = false;  // only folders remember roots
  std::vector<RememberedRoot> roots;
};

// Each reads the index at `path`.
//   Throws   CommandError if it cannot be read.
IndexFacts FactsOfFile(const std::string& path);
IndexFacts FactsOfFolder(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_UPKEEP_INDEX_FACTS_H_
