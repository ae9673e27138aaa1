// SPDX-License-Identifier: GPL-3.0-or-later
// Where the terms of a query are in a text.
#ifndef KESTAN_SEARCH_SNIPPET_TERM_MATCHES_H_
#define KESTAN_SEARCH_SNIPPET_TERM_MATCHES_H_

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "search/text/text_rules.h"

namespace kestan::search {

// The bytes of a text from `start` up to, not including, `end`, which match `term`.
struct TermMatch {
  std::size_t start = 0;
  std::size_t end = 0;
  std::string_view term;  // borrowed from the set of terms
};

// Words as they are stored.
using Terms = std::set<std::string, std::less<>>;

// Finds the words of `text` (UTF-8) that match any of `terms`, in the order in which they begin.
// They may overlap. Words are compared as they are indexed by `rules`; ASCII letters as they stand
// and in lower case. Borrows `terms`.
//   Throws   TransliterationError, std::bad_alloc.
std::vector<TermMatch> FindTerms(std::string_view text, const Terms& terms,
                                 TextRules rules = TextRules::kAsciiLetters);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SNIPPET_TERM_MATCHES_H_
