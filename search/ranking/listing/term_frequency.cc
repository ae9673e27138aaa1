#include "search/ranking/listing/term_frequency.h"

#include <algorithm>
#include <string_view>

namespace kestan::search {
namespace {

// The score of a word counts its positions, and OR adds them up; a set keeps only the number of
// positions modulo 65536. NEAR adds bonuses to the score, but its positions are those that match;
// there are none where they are not known.
std::uint32_t FrequencyIn(const Match& match, const Query& clause) {
  if (clause.kind != Query::Kind::kNear) return match.score;
  return std::max<std::uint32_t>(static_cast<std::uint32_t>(match.positions.count), 1);
}

}  // namespace

std::vector<TermFrequency> TermFrequenciesIn(const ResultSet& set, const Query& clause) {
  std::vector<TermFrequency> frequencies;
  set.ForEachDocument([&](const Match& match, std::string_view) {
    frequencies.push_back({match.code, FrequencyIn(match, clause)});
  });
  return frequencies;
}

}  // namespace kestan::search
