// Cutting the piece out of a text that shows best why a query found it.
#ifndef KESTAN_SEARCH_SNIPPET_SNIPPET_H_
#define KESTAN_SEARCH_SNIPPET_SNIPPET_H_

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// About how much of the text a snippet shows.
constexpr std::size_t kSnippetBytes = 160;

// A stretch of a snippet; those that match are one word each.
struct Piece {
  std::string text;
  bool matches = false;
};

// Returns the stretch of `text` with the most different words of `sought`, on one line: one blank
// for each run of white space and of control characters, and "..." where text was left out. Words
// are compared as they are indexed: as they stand and in small letters.
//   Returns  nothing if no word matches.
std::vector<Piece> MakeSnippet(std::string_view text, const std::set<std::string>& sought);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SNIPPET_SNIPPET_H_
