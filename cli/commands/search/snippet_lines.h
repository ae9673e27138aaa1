// SPDX-License-Identifier: GPL-3.0-or-later
// Snippets that fit a terminal.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_SNIPPET_LINES_H_
#define KESTAN_CLI_COMMANDS_SEARCH_SNIPPET_LINES_H_

#include <kestan/search.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kestan_cli {

// Returns `snippet` on at most two lines of at most `columns` (16 at least), broken between words
// where these are not long. Of one that is longer, it is the part with the most matches, and "..."
// where text was left out. With `coloured`, matches are bold; without, [matches] are in brackets.
// Control characters are escaped.
std::vector<std::string> SnippetLines(const std::vector<kestan::search::Fragment>& snippet,
                                      bool coloured, std::size_t columns);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_SNIPPET_LINES_H_
