#include "search/ranking/hits.h"

#include <algorithm>
#include <tuple>

namespace kestan::search {

std::vector<Hit> HitsIn(std::string_view listing) {
  std::vector<Hit> hits;
  ForEachHit(listing, [&](int percent, std::string_view name) {
    hits.push_back({percent, std::string(name), hits.size()});
  });
  return hits;
}

std::size_t CountLines(std::string_view listing) {
  return static_cast<std::size_t>(std::count(listing.begin(), listing.end(), '\n'));
}

void Sort(HitOrder order, std::vector<Hit>* hits) {
  std::sort(hits->begin(), hits->end(), [order](const Hit& left, const Hit& right) {
    if (order == HitOrder::kName) {
      return std::tie(left.name, left.place) < std::tie(right.name, right.place);
    }
    if (order == HitOrder::kCode) return left.place < right.place;
    return std::tie(right.percent, left.place) < std::tie(left.percent, right.place);
  });
}

}  // namespace kestan::search
