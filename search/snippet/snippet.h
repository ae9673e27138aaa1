// SPDX-License-Identifier: GPL-3.0-or-later
// Cuts the part out of a text that shows best why a query matches.
#ifndef KESTAN_SEARCH_SNIPPET_SNIPPET_H_
#define KESTAN_SEARCH_SNIPPET_SNIPPET_H_

#include <cstddef>
#include <string_view>
#include <vector>

#include "search/snippet/fragments.h"
#include "search/snippet/term_matches.h"
#include "search/text/text_rules.h"

namespace kestan::search {

// About how much of the text a snippet shows.
constexpr std::size_t kSnippetBytes = 160;

// Returns the part of `text` with the most different words of `matched_terms`, on one line: one
// blank for each run of white space and of control characters, and "..." where text was left out.
// Words are compared as they are indexed by `rules`. Matches that overlap are one fragment.
//   Returns  nothing if no word matches.
std::vector<Fragment> MakeSnippet(std::string_view text, const Terms& matched_terms,
                                  TextRules rules = TextRules::kAsciiLetters);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SNIPPET_SNIPPET_H_
