// SPDX-License-Identifier: GPL-3.0-or-later
// From a query built by calls to the query that is searched for.
#ifndef KESTAN_SEARCH_QUERY_BUILT_LOWERING_H_
#define KESTAN_SEARCH_QUERY_BUILT_LOWERING_H_

#include <kestan/search/search_query.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <string>
#include <vector>

#include "search/query/query.h"
#include "search/query/query_parser.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// How many parts a query may have. As parts are shared, a small program may build a query of more
// than any memory holds.
constexpr std::size_t kMaxQueryParts = 1'000'000;

// Reads `query` as words outside quotes are read with `default_operator`: kAnd takes them as they
// are written, the others for all their forms. Chains of one operator become one node.
// Adds the beginnings of words that are cut to `*cut`, unless that is null.
//   Returns  kInvalidQuery for a text without words, a prefix that nothing can begin with, a wrong
//            distance, an operator without operands, more than kMaxQueryDepth operators one within
//            the other, or more than kMaxQueryParts parts; kOutOfMemory for a query that there was
//            no memory to build.
//   Throws   TransliterationError, std::bad_alloc.
Result<Query> Lowered(const SearchQuery& query, DefaultOperator default_operator, TextRules rules,
                      std::vector<std::string>* cut = nullptr);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_BUILT_LOWERING_H_
