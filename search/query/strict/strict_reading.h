// SPDX-License-Identifier: GPL-3.0-or-later
// Texts of queries that must be read as they are written.
#ifndef KESTAN_SEARCH_QUERY_STRICT_STRICT_READING_H_
#define KESTAN_SEARCH_QUERY_STRICT_STRICT_READING_H_

#include <kestan/search/status.h>

#include <string_view>

#include "search/text/text_rules.h"

namespace kestan::search {

// Returns the first mistake of `text`, as kInvalidQuery with its column: what ParseQuery() would
// leave out or take for something else. That is a parenthesis or a quote without its partner, an
// operator that lacks an operand, a NEAR without a distance, an operator of other tools, a part
// without letters or digits, a suffix that does not stand right after a word, a word that is cut,
// nesting that is too deep, and a text without any part.
//   Throws   TransliterationError, std::bad_alloc.
Status CheckIsStrict(std::string_view text, TextRules rules);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_STRICT_STRICT_READING_H_
