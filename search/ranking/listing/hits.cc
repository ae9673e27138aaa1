#include "search/ranking/listing/hits.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "search/ranking/listing/percentage.h"

namespace kestan::search {
namespace {

// A code without a name is not a document, but its score sets the scale too, as in the engine's
// listings.
Score BestScoreIn(const ResultSet& set) {
  Score best = 0;
  set.ForEachMatch([&](const Match& match) { best = std::max(best, match.score); });
  return best;
}

}  // namespace

std::vector<EngineHit> HitsIn(const ResultSet& set) {
  const PercentageScale percentage(BestScoreIn(set));
  std::vector<EngineHit> hits;
  set.ForEachDocument([&](const Match& match, std::string_view name) {
    hits.push_back({percentage.Of(match.score), std::string(name), match.code});
  });
  return hits;
}

void Sort(HitOrder order, std::vector<EngineHit>* hits) {
  std::sort(hits->begin(), hits->end(), [order](const EngineHit& left, const EngineHit& right) {
    if (order == HitOrder::kName) {
      return std::tie(left.name, left.code) < std::tie(right.name, right.code);
    }
    if (order == HitOrder::kCode) return left.code < right.code;
    return std::tie(right.percent, left.code) < std::tie(left.percent, right.code);
  });
}

}  // namespace kestan::search
