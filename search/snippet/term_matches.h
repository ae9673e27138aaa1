// Where the terms of a query are in a text.
#ifndef KESTAN_SEARCH_SNIPPET_TERM_MATCHES_H_
#define KESTAN_SEARCH_SNIPPET_TERM_MATCHES_H_

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// The bytes of a text from `start` up to, not including, `end`, which match `term`.
struct TermMatch {
  std::size_t start = 0;
  std::size_t end = 0;
  std::string_view term;  // borrowed from the set of terms
};

// Finds the words of `text` (UTF-8) that match any of `terms`, in order. Words are compared as they
// are indexed: as they stand and in lower case. Borrows `terms`.
std::vector<TermMatch> FindTerms(std::string_view text, const std::set<std::string>& terms);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SNIPPET_TERM_MATCHES_H_
