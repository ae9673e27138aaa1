// SPDX-License-Identifier: GPL-3.0-or-later
// Which part of a text shows best why a query matches.
#ifndef KESTAN_SEARCH_SNIPPET_WINDOW_H_
#define KESTAN_SEARCH_SNIPPET_WINDOW_H_

#include <cstddef>
#include <vector>

#include "search/snippet/term_matches.h"

namespace kestan::search {

// Matches in a row, from number `first` up to, not including, `last`.
struct Window {
  std::size_t first = 0;
  std::size_t last = 0;
  std::size_t different_terms = 0;
};

// Finds the window of at most `max_bytes` with the most different terms, then with the most
// matches; the first of equals. A match longer than that is a window by itself. One pass: both ends
// only move on.
Window BestWindow(const std::vector<TermMatch>& matches, std::size_t max_bytes);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SNIPPET_WINDOW_H_
