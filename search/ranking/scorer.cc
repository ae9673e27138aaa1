#include "search/ranking/scorer.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "search/ranking/proximity.h"

namespace kestan::search {
namespace {

bool HasCode(const Occurrences& found, std::size_t place, Code code) {
  return place < found.size() && found.codes[place] == code;
}

// Returns whether what was found in the document at `place` is among its first words.
bool IsOpening(const Occurrences& found, std::size_t place) {
  const Position first = FirstPosition(found, place);
  return first > 0 && first <= kOpeningWords;
}

constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

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

// Of a clause that opens the document.
double Scorer::OpeningWeight(std::size_t clause) const {
  return parameters_.opening_bonus * parameters_.idfs[clause];
}

double Scorer::GreatestPairs() const {
  double bonus = 0;
  for (std::size_t i = 0; i + 1 < matches_.clauses.size(); ++i) bonus += PairWeight(i);
  return bonus;
}

double Scorer::GreatestBonus() const {
  if (!matches_.with_positions) return 0;
  double bonus = GreatestPairs();
  for (std::size_t i = 0; i < matches_.clauses.size(); ++i) bonus += OpeningWeight(i);
  return bonus;
}

// Of a clause and the next one, in the document whose places in them are `left` and `right`.
double Scorer::BonusOfPair(std::size_t clause, std::size_t left, std::size_t right) {
  const Occurrences& first = *matches_.clauses[clause];
  const Occurrences& next = *matches_.clauses[clause + 1];
  const double distance = SmallestDistance(left_.Of(first, left), right_.Of(next, right));
  return distance > 0 ? PairWeight(clause) / (distance * distance) : 0;
}

double Scorer::BonusOf(Code code, double score, double least) {
  double bonus = 0;
  if (!matches_.with_positions) return bonus;
  const auto& clauses = matches_.clauses;
  document_places_.resize(clauses.size());
  for (std::size_t i = 0; i < clauses.size(); ++i) {
    const std::size_t place = places_.Find(i, *clauses[i], code);
    const bool is_there = HasCode(*clauses[i], place, code);
    document_places_[i] = is_there ? place : kNowhere;
    if (is_there && IsOpening(*clauses[i], place)) bonus += OpeningWeight(i);
  }
  if (score + bonus + GreatestPairs() < least) return bonus;
  for (std::size_t i = 0; i + 1 < clauses.size(); ++i) {
    const std::size_t left = document_places_[i];
    const std::size_t right = document_places_[i + 1];
    if (left != kNowhere && right != kNowhere) bonus += BonusOfPair(i, left, right);
  }
  return bonus;
}

void Scorer::AddOpenings(std::size_t clause, const std::vector<Code>& codes,
                         std::vector<double>* bonuses) const {
  const Occurrences& found = *matches_.clauses[clause];
  const double weight = OpeningWeight(clause);
  ForEachCommon(codes, found.codes, [&](std::size_t i, std::size_t place) {
    if (IsOpening(found, place)) (*bonuses)[i] += weight;
  });
}

// Looks for the rarest of the three in the others.
void Scorer::AddPairs(std::size_t clause, const std::vector<Code>& codes,
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
  for (std::size_t i = 0; i < matches_.clauses.size(); ++i) AddOpenings(i, codes, &bonuses);
  for (std::size_t i = 0; i + 1 < matches_.clauses.size(); ++i) AddPairs(i, codes, &bonuses);
  for (std::size_t i = 0; i < scores.size(); ++i) scores[i] += bonuses[i];
  return scores;
}

}  // namespace kestan::search
