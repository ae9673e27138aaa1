// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the filters out of a query: "wing type:pdf -path:old" asks for the word "wing".
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_QUERY_FILTERS_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_QUERY_FILTERS_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

enum class FilterKey { kPath, kType, kAfter, kBefore, kTitle, kFrom };

struct QueryFilter {
  FilterKey key = FilterKey::kPath;
  std::string value;      // not empty
  bool excludes = false;  // it stands after - or NOT
  std::string text;       // as it was written, without that
};

struct FilteredQuery {
  std::string words;  // the query without its filters; as it was if there were none
  std::vector<QueryFilter> filters;
  std::vector<std::string> notes;
};

// Takes each "KEY:VALUE" and KEY:"VALUE WITH BLANKS" out of `query` where a word may begin, if KEY
// is one of path, type, after, before, title and from; and with it - or NOT before it, an operator
// that loses its operand, and parentheses that hold nothing else. What stands in quotes is text. A
// note tells of each filter in a group or beside OR or NEAR that it holds for the whole query.
//   Throws   CommandError for a key without a value.
FilteredQuery TakeFilters(std::string_view query);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_QUERY_FILTERS_H_
