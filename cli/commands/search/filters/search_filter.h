// SPDX-License-Identifier: GPL-3.0-or-later
// The filters of a query, put to documents.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_SEARCH_FILTER_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_SEARCH_FILTER_H_

#include <kestan/search.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "cli/commands/search/filters/document_facts.h"
#include "cli/commands/search/filters/path_pattern.h"
#include "cli/commands/search/filters/query_filters.h"
#include "cli/commands/search/filters/word_run.h"
#include "cli/index/document_names.h"

namespace kestan_cli {

// Looks at documents. All filters must hold; of several path:, type: or from: without NOT, one of
// each key is enough. Any number of threads may use one object at once.
class SearchFilter {
 public:
  // Days are those of the user's clock, as seen from `now`.
  //   Throws   CommandError for a value that cannot be read.
  SearchFilter(const std::vector<QueryFilter>& filters, std::time_t now);

  bool empty() const { return tests_.empty(); }

  // Returns whether a document passes. Reads of it what is needed.
  //   Throws   CommandError where words cannot be found, for lack of ICU.
  bool Passes(const kestan::search::FilteredDocument& document) const;

  // Returns a query for the documents that hold the words of title: filters first, and then all
  // others; "" without such filters.
  std::string QueryForTitles() const;

 private:
  struct Test {
    FilterKey key = FilterKey::kPath;
    bool excludes = false;
    std::string value;
    PathPattern path{""};        // of kPath
    std::int64_t day_start = 0;  // of kAfter, kBefore
    WordRun words{""};           // of kTitle, kFrom
  };
  struct Read;  // what was read of a document

  static Test TestOf(const QueryFilter& filter, std::time_t now);
  bool Holds(const Test& test, Read* read) const;
  bool HasPath(const Test& test, Read* read) const;

  std::vector<Test> tests_;  // those of a key side by side, the cheapest keys first
  ShownNames names_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_SEARCH_FILTER_H_
