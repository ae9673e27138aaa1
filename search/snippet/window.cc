// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/snippet/window.h"

#include <map>
#include <string_view>
#include <utility>

namespace kestan::search {

Window BestWindow(const std::vector<TermMatch>& matches, std::size_t max_bytes) {
  std::map<std::string_view, std::size_t> counts;
  Window best;
  std::size_t last = 0;
  for (std::size_t first = 0; first < matches.size(); ++first) {
    while (last < matches.size() &&
           (last == first || matches[last].end - matches[first].start <= max_bytes)) {
      ++counts[matches[last++].term];
    }
    const bool is_better = std::make_pair(counts.size(), last - first) >
                           std::make_pair(best.different_terms, best.last - best.first);
    if (is_better) best = {first, last, counts.size()};
    const auto count = counts.find(matches[first].term);
    if (--count->second == 0) counts.erase(count);
  }
  return best;
}

}  // namespace kestan::search
