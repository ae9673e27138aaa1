// SPDX-License-Identifier: GPL-3.0-or-later
// Prints queries.
#ifndef KESTAN_SEARCH_QUERY_QUERY_PRINTER_H_
#define KESTAN_SEARCH_QUERY_QUERY_PRINTER_H_

#include <string>

#include "search/query/query.h"

namespace kestan::search {

// Prints `query` as a text that ParseQuery (with kAnd and `quotes`) parses to the same query. Of
// kInflections it prints the word only.
std::string ToString(const Query& query, QuotesMean quotes = QuotesMean::kNear);

// Prints the node itself, without its operands: a word as it is spelled, or the operator.
std::string LabelOf(const Query& query);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_PRINTER_H_
