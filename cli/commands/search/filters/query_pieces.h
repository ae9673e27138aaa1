// SPDX-License-Identifier: GPL-3.0-or-later
// Cuts a query into words, phrases, operators and filters, as the search library cuts it.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_QUERY_PIECES_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_QUERY_PIECES_H_

#include <string>
#include <string_view>
#include <vector>

#include "cli/commands/search/filters/query_filters.h"

namespace kestan_cli {

struct QueryPiece {
  enum class Kind { kText, kFilter, kOpen, kClose, kNot, kAnd, kNear, kOr };
  Kind kind = Kind::kText;
  std::string text;      // as it was written, but with plain quotes
  QueryFilter filter{};  // of kFilter; the - before it is part of it
};

// Returns the pieces of `query` in order.
//   Throws   CommandError for the key of a filter without a value.
std::vector<QueryPiece> PiecesOf(std::string_view query);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_QUERY_PIECES_H_
