// The documents that a query finds.
#ifndef KESTAN_SEARCH_RANKING_HITS_H_
#define KESTAN_SEARCH_RANKING_HITS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

struct Hit {
  int percent = 0;  // of the best hit's score or relevance
  std::string name;
  std::size_t place = 0;  // in the listing, which is in order of codes
};

// In which order hits are shown.
enum class HitOrder {
  kBest,   // by relevance where words side by side mean any of them, else by score
  kScore,  // the engine's percentage, the highest first; among equals, the document added first
  kName,   // in order of bytes
  kCode,   // in order of the engine's codes: the document added first, where none was removed
};

// Parses a listing of the engine's: lines "PERCENT NAME".
std::vector<Hit> HitsIn(std::string_view listing);

// Returns how many lines `listing` has.
std::size_t CountLines(std::string_view listing);

// Puts `hits` into `order`; kBest is taken for kScore, and percentages are compared as they are.
void Sort(HitOrder order, std::vector<Hit>* hits);

// Calls `take(percent, name)` for each line of `listing`. The name is part of the listing.
template <typename Take>
void ForEachHit(std::string_view listing, Take take) {
  while (!listing.empty()) {
    const std::string_view line = listing.substr(0, listing.find('\n'));
    listing.remove_prefix(line.size() < listing.size() ? line.size() + 1 : line.size());
    int percent = 0;
    std::size_t digits = 0;
    for (; digits < line.size() && line[digits] != ' '; ++digits) {
      percent = percent * 10 + (line[digits] - '0');
    }
    take(percent, line.substr(digits < line.size() ? digits + 1 : digits));
  }
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_HITS_H_
