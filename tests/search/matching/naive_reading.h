// SPDX-License-Identifier: GPL-3.0-or-later
// What queries find, from reading each document word by word.
#ifndef KESTAN_TESTS_SEARCH_MATCHING_NAIVE_READING_H_
#define KESTAN_TESTS_SEARCH_MATCHING_NAIVE_READING_H_

#include <kestan/search/index_reader.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "search/query/query.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan_tests {

// How often a query occurs in a document, and where; 0 stands for anywhere.
struct NaiveMatch {
  std::size_t count = 0;
  std::vector<int> positions;
};

// Returns what `query` finds in `document`; nothing if it does not match.
std::optional<NaiveMatch> ReadNaively(const DocumentOfWords& document,
                                      const kestan::search::Query& query);

// Returns the living documents that match, with their scores, by their current names.
std::map<std::string, double> ScoreNaively(const std::vector<DocumentOfWords>& documents,
                                           const kestan::search::Query& query,
                                           const kestan::search::SearchOptions& options);

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SEARCH_MATCHING_NAIVE_READING_H_
