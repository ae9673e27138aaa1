#include "search/ranking/scorer.h"

#include <algorithm>
#include <cstdint>

#include "search/ranking/proximity.h"

namespace kestan::search {
namespace {

bool HasCode(const Occurrences& found, std::size_t place, Code code) {
  return place < found.size() && found.codes[place] == code;
}

}  // namespace

std::vector<double> Scorer::Bm25Scores(const std::vector<Code>& codes) const {
  const double fixed = parameters_.k1 * (1 - parameters_.b);
  const double by_word = parameters_.k1 * parameters_.b / parameters_.mean_words;
  std::vector<double> length_norms(codes.size());
  segment_.table().VisitWords(codes, [&](std::size_t i, std::uint32_t words) {
    length_norms[i] = fixed + by_word * static_cast<double>(words);
  });
  std::vector<double> scores(codes.size());
  for (std::size_t clause = 0; clause < matches_.clauses.size(); ++clause) {
    AddClause(clause, codes, length_norms, &scores);
  }
  return scores;
}

void Scorer::AddClause(std::size_t clause, const std::vector<Code>& codes,
                       const std::vector<double>& length_norms, std::vector<double>* scores) const {
  const Occurrences& found = *matches_.clauses[clause];
  const double weight = parameters_.idfs[clause] * (parameters_.k1 + 1);
  const auto add = [&](std::size_t i, std::size_t place) {
    const auto tf = static_cast<double>(found.counts[place]);
    (*scores)[i] += weight * tf / (tf + length_norms[i]);
  };
  if (&codes == &found.codes) {
    for (std::size_t i = 0; i < codes.size(); ++i) add(i, i);
  } else {
    ForEachCommon(codes, found.codes, add);
  }
}

// Of a clause and the next one.
double Scorer::PairWeight(std::size_t clause) const {
  return parameters_.proximity_bonus *
         std::min(parameters_.idfs[clause], parameters_.idfs[clause + 1]);
}

double Scorer::GreatestBonus() const {
  double bonus = 0;
  if (!matches_.with_positions) return bonus;
  for (std::size_t i = 0; i + 1 < matches_.clauses.size(); ++i) bonus += PairWeight(i);
  return bonus;
}

// Of a clause and the next one, in the document whose places in them are `left` and `right`.
double Scorer::BonusOfPair(std::size_t clause, std::size_t left, std::size_t right) {
  const Occurrences& first = *matches_.clauses[clause];
  const Occurrences& next = *matches_.clauses[clause + 1];
  const double distance = SmallestDistance(left_.Of(first, left), right_.Of(next, right));
  return distance > 0 ? PairWeight(clause) / (distance * distance) : 0;
}

double Scorer::BonusOf(Code code) {
  double bonus = 0;
  if (!matches_.with_positions) return bonus;
  const auto& clauses = matches_.clauses;
  for (std::size_t i = 0; i + 1 < clauses.size(); ++i) {
    const std::size_t left = places_.Find(i, *clauses[i], code);
    const std::size_t right = places_.Find(i + 1, *clauses[i + 1], code);
    if (!HasCode(*clauses[i], left, code) || !HasCode(*clauses[i + 1], right, code)) continue;
    bonus += BonusOfPair(i, left, right);
  }
  return bonus;
}

// Looks for the rarest of the three in the others.
void Scorer::AddBonuses(std::size_t clause, const std::vector<Code>& codes,
                        std::vector<double>* bonuses) {
  const std::vector<Code>& first = matches_.clauses[clause]->codes;
  const std::vector<Code>& next = matches_.clauses[clause + 1]->codes;
  const auto is_shorter = [](const auto* a, const auto* b) { return a->size() < b->size(); };
  const std::vector<Code>& rarest = *std::min({&codes, &first, &next}, is_shorter);
  const std::vector<Place> in_codes = PlacesOf(rarest, codes);
  const std::vector<Place> in_first = PlacesOf(rarest, first);
  const std::vector<Place> in_next = PlacesOf(rarest, next);
  for (std::size_t i = 0; i < rarest.size(); ++i) {
    if (in_codes[i] == kNoPlace || in_first[i] == kNoPlace || in_next[i] == kNoPlace) continue;
    (*bonuses)[in_codes[i]] += BonusOfPair(clause, in_first[i], in_next[i]);
  }
}

std::vector<double> Scorer::Scores(const std::vector<Code>& codes) {
  std::vector<double> scores = Bm25Scores(codes);
  if (!matches_.with_positions) return scores;
  std::vector<double> bonuses(codes.size());
  for (std::size_t i = 0; i + 1 < matches_.clauses.size(); ++i) AddBonuses(i, codes, &bonuses);
  for (std::size_t i = 0; i < scores.size(); ++i) scores[i] += bonuses[i];
  return scores;
}

}  // namespace kestan::search
