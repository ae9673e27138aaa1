// SPDX-License-Identifier: GPL-3.0-or-later
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

// Returns whether what is first at this position is among the first words; 0 is anywhere.
bool IsOpening(Position first) { return first > 0 && first <= kOpeningWords; }

double ScoreOfCount(double weight, std::uint32_t count, double length_norm) {
  const auto tf = static_cast<double>(count);
  return weight * tf / (tf + length_norm);
}

constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

}  // namespace

std::vector<double> Scorer::LengthNorms(const std::vector<Code>& codes) const {
  const double fixed = parameters_.k1 * (1 - parameters_.b);
  const double by_word = parameters_.k1 * parameters_.b / parameters_.mean_words;
  std::vector<double> norms(codes.size());
  segment_.table().VisitWords(codes, [&](std::size_t i, std::uint32_t words) {
    norms[i] = fixed + by_word * static_cast<double>(words);
  });
  return norms;
}

std::vector<double> Scorer::Bm25Scores(const std::vector<Code>& codes) const {
  const std::vector<double> length_norms = LengthNorms(codes);
  std::vector<double> scores(codes.size());
  for (std::size_t clause = 0; clause < matches_.clauses.size(); ++clause) {
    const Occurrences& found = *matches_.clauses[clause];
    const double weight = ClauseWeight(clause);
    const auto add = [&](std::size_t i, std::size_t place) {
      scores[i] += ScoreOfCount(weight, found.counts[place], length_norms[i]);
    };
    if (&codes == &found.codes) {
      for (std::size_t i = 0; i < codes.size(); ++i) add(i, i);
    } else {
      ForEachCommon(codes, found.codes, add);
    }
  }
  return scores;
}

double Scorer::ClauseWeight(std::size_t clause) const {
  return parameters_.idfs[clause] * (parameters_.k1 + 1);
}

// Of a clause and the next one.
double Scorer::PairWeight(std::size_t clause) const {
  return parameters_.proximity_bonus *
         std::min(parameters_.idfs[clause], parameters_.idfs[clause + 1]);
}

// Of a clause that opens the document.
double Scorer::OpeningBonus(std::size_t clause, Position first) const {
  if (!IsOpening(first)) return 0;
  const double bonus = parameters_.opening_bonus * parameters_.idfs[clause];
  return matches_.clauses.size() == 1 ? bonus * (1 + 1.0 / first) : bonus;
}

double Scorer::GreatestPairs() const {
  double bonus = 0;
  for (std::size_t i = 0; i + 1 < matches_.clauses.size(); ++i) bonus += PairWeight(i);
  return bonus;
}

double Scorer::GreatestBonus() const {
  if (!matches_.with_positions) return 0;
  double bonus = GreatestPairs();
  for (std::size_t i = 0; i < matches_.clauses.size(); ++i) bonus += OpeningBonus(i, 1);
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
    if (is_there) bonus += OpeningBonus(i, FirstPositions(*clauses[i])[place]);
  }
  if (!MayReach(score + bonus + GreatestPairs(), least)) return bonus;
  for (std::size_t i = 0; i + 1 < clauses.size(); ++i) {
    const std::size_t left = document_places_[i];
    const std::size_t right = document_places_[i + 1];
    if (left != kNowhere && right != kNowhere) bonus += BonusOfPair(i, left, right);
  }
  return bonus;
}

// Adds both in one pass: what a clause found is read once.
void Scorer::AddClause(std::size_t clause, const Link& link,
                       const std::vector<double>& length_norms, std::vector<double>* scores,
                       std::vector<double>* bonuses) const {
  const Occurrences& found = *matches_.clauses[clause];
  const double weight = ClauseWeight(clause);
  const FirstPositions firsts(found);
  const auto add = [&](std::size_t i, std::size_t place) {
    (*scores)[i] += ScoreOfCount(weight, found.counts[place], length_norms[i]);
    if (IsOpening(firsts[place])) (*bonuses)[i] += OpeningBonus(clause, firsts[place]);
  };
  for (std::size_t i = 0; i < link.places.size(); ++i) {
    const std::size_t place = link.places[i];
    if (place == kNoPlace) continue;
    link.is_of_codes ? add(i, place) : add(place, i);
  }
}

Scorer::Link Scorer::LinkOf(std::size_t clause, const std::vector<Code>& codes) const {
  const std::vector<Code>& found = matches_.clauses[clause]->codes;
  const bool is_of_codes = codes.size() <= found.size();
  return {is_of_codes, is_of_codes ? PlacesOf(codes, found) : PlacesOf(found, codes)};
}

// Looks for the rarest of the three in the others. Links hold what was looked for before.
void Scorer::AddPairs(std::size_t clause, const std::vector<Code>& codes,
                      const std::vector<Link>& links, std::vector<double>* bonuses) {
  const std::vector<Code>& first = matches_.clauses[clause]->codes;
  const std::vector<Code>& next = matches_.clauses[clause + 1]->codes;
  if (links[clause].is_of_codes && links[clause + 1].is_of_codes) {
    const std::vector<Place>& in_first = links[clause].places;
    const std::vector<Place>& in_next = links[clause + 1].places;
    for (std::size_t i = 0; i < codes.size(); ++i) {
      if (in_first[i] == kNoPlace || in_next[i] == kNoPlace) continue;
      (*bonuses)[i] += BonusOfPair(clause, in_first[i], in_next[i]);
    }
    return;
  }
  const bool is_first_rarer = first.size() <= next.size();
  const std::vector<Place>& in_codes = links[is_first_rarer ? clause : clause + 1].places;
  const std::vector<Place> in_other =
      is_first_rarer ? PlacesOf(first, next) : PlacesOf(next, first);
  for (std::size_t i = 0; i < in_other.size(); ++i) {
    if (in_codes[i] == kNoPlace || in_other[i] == kNoPlace) continue;
    (*bonuses)[in_codes[i]] +=
        is_first_rarer ? BonusOfPair(clause, i, in_other[i]) : BonusOfPair(clause, in_other[i], i);
  }
}

std::vector<double> Scorer::Scores(const std::vector<Code>& codes) {
  if (!matches_.with_positions) return Bm25Scores(codes);
  const std::vector<double> length_norms = LengthNorms(codes);
  std::vector<double> scores(codes.size());
  std::vector<double> bonuses(codes.size());
  std::vector<Link> links;
  for (std::size_t i = 0; i < matches_.clauses.size(); ++i) {
    links.push_back(LinkOf(i, codes));
    AddClause(i, links.back(), length_norms, &scores, &bonuses);
  }
  for (std::size_t i = 0; i + 1 < links.size(); ++i) AddPairs(i, codes, links, &bonuses);
  for (std::size_t i = 0; i < scores.size(); ++i) scores[i] += bonuses[i];
  return scores;
}

}  // namespace kestan::search
