// The subcommand `search`.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_COMMAND_H_
#define KESTAN_CLI_COMMANDS_SEARCH_COMMAND_H_

#include <kestan/kestan.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "search/query/query_parser.h"
#include "search/ranking/hits.h"

namespace kestan_cli {

enum class Colour { kAuto, kAlways, kNever };

// What to find, and what to show of it. Where several are asked for, `json` goes before `count`,
// that before `nul`, that before `names_only`.
struct SearchOptions {
  std::string query;  // arguments joined by blanks
  kestan::search::DefaultOperator default_operator =
      kestan::search::DefaultOperator::kAnd;                         // --any: kOr
  kestan::search::HitOrder order = kestan::search::HitOrder::kBest;  // --order
  std::optional<std::size_t> limit;     // --limit: how many hits are shown
  bool names_only = false;              // -l
  bool nul = false;                     // -0: names only, each followed by a NUL
  bool count = false;                   // --count: only how many hits there are
  bool json = false;                    // --json
  bool snippets = false;                // --snippets: titles and snippets in any output
  std::vector<std::string> converters;  // --converter: EXT=COMMAND, for snippets
  bool explain = false;                 // --explain
  Colour colour = Colour::kAuto;        // --color
};

// Prints the documents that a query finds. On a terminal, or with snippets, a hit is shown with its
// title and a piece of its file; otherwise as a line "PERCENT NAME". Colours are used on a terminal
// only, and not if the environment has NO_COLOR, unless `colour` says otherwise. On the standard
// error stream: the explanation (with JSON, it is in there instead), what was left out of the
// query, and, if nothing matches, words that may be meant.
//   Returns  kDone, or kNoHits if nothing matches.
//   Throws   CommandError if the index cannot be read or the output not written, BrokenPipe.
int RunSearch(Kestan& engine, const std::string& index, const SearchOptions& options);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_COMMAND_H_
