// SPDX-License-Identifier: GPL-3.0-or-later
// `kestan search`: finds documents and prints them.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_SEARCH_COMMAND_H_
#define KESTAN_CLI_COMMANDS_SEARCH_SEARCH_COMMAND_H_

#include <kestan/search.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/console/report.h"

namespace kestan_cli {

enum class Colour { kAuto, kAlways, kNever };

enum class HitOrder { kBest, kName };

// What to find, and what to show of it. JSON prevails over `count`, `count` over `nul`, and `nul`
// over `names_only`.
struct SearchOptions {
  std::vector<std::string> indexes;  // one at least: searched as one
  std::string query;                 // arguments joined by blanks
  kestan::search::WordsMean words = kestan::search::WordsMean::kBest;  // --all, --any
  HitOrder order = HitOrder::kBest;                                    // --order
  std::optional<std::size_t> limit;                                    // --limit; 0: all hits
  bool names_only = false;                                             // -l
  bool nul = false;                           // -0: names only, each followed by a NUL
  bool count = false;                         // --count: only how many hits there are
  ReportFormat format = ReportFormat::kText;  // --json
  bool snippets = false;                      // --snippets: titles and snippets in any output
  std::vector<std::string> converters;        // --converter: EXT=COMMAND, for snippets
  bool explain = false;                       // --explain
  Colour colour = Colour::kAuto;              // --color
};

// Prints the documents that match a query. On a terminal, or with snippets, a hit has its title and
// a fragment of its file; otherwise it is a line "PERCENT NAME". On a terminal it has its date too,
// all lines fit, a line with the total is the last, and without a limit there are 10 hits. All are
// printed otherwise, and where only names are. Unless `colour` says otherwise,
// only terminals get colours, and only without NO_COLOR in the environment. The standard error
// stream gets the explanation, notes on the query and, if nothing matches, suggestions; JSON holds
// these in itself.
//   Returns  kDone, or kNoHits if nothing matches.
//   Throws   CommandError if an index cannot be read or the output not written, BrokenPipe.
int RunSearch(const SearchOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_SEARCH_COMMAND_H_
