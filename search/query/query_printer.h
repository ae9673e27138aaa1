// Writing queries down.
#ifndef KESTAN_SEARCH_QUERY_QUERY_PRINTER_H_
#define KESTAN_SEARCH_QUERY_QUERY_PRINTER_H_

#include <string>

#include "search/query/query.h"

namespace kestan::search {

// Writes `query` as a text that ParseQuery (with kAll) reads as the same query, but for kForms, of
// which only the word is written.
std::string Spelled(const Query& query);

// Names the node itself, without its operands: a word as it is spelled, or the operator.
std::string LabelOf(const Query& query);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_QUERY_PRINTER_H_
