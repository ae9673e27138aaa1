// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/search/matching/naive_reading.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "search/query/clauses.h"
#include "search/text/letters.h"
#include "search/vocabulary/stem.h"
#include "tests/search/vocabulary/edit_distance.h"

namespace kestan_tests {
namespace {

using namespace kestan::search;
using Kind = Query::Kind;
using Maybe = std::optional<NaiveMatch>;

std::string StemOf(const std::string& word) {
  Stemmer stemmer(DefaultLanguage());
  if (!stemmer.HasForms(word) || !stemmer.Open().ok()) return word;
  return std::string(stemmer.Stem(word));
}

bool Stands(const Query& leaf, const std::string& term) {
  const bool case_fits = HasCapital(leaf.word) || !HasCapital(term);
  if (leaf.kind == Kind::kPrefix) return case_fits && term.rfind(leaf.word, 0) == 0;
  if (leaf.kind == Kind::kFuzzy) {
    return case_fits && BoundedEditDistance(leaf.word, term, leaf.edits) <= leaf.edits;
  }
  if (leaf.kind == Kind::kInflections) {
    return case_fits && StemOf(leaf.word) == StemOf(term);
  }
  return term == leaf.word;
}

Maybe ReadLeaf(const DocumentOfWords& document, const Query& leaf) {
  NaiveMatch match;
  for (std::size_t i = 0; i < document.words.size(); ++i) {
    for (const std::string& term : TermsOfWord(document.words[i])) {
      if (Stands(leaf, term)) match.positions.push_back(PositionOfWord(i));
    }
  }
  match.count = match.positions.size();
  return match.count > 0 ? Maybe(match) : std::nullopt;
}

std::vector<Query> EachOnce(const std::vector<Query>& operands) {
  std::vector<Query> once;
  for (const Query& operand : operands) {
    if (std::find(once.begin(), once.end(), operand) == once.end()) once.push_back(operand);
  }
  return once;
}

Maybe ReadJoined(const DocumentOfWords& document, const Query& query) {
  NaiveMatch match;
  bool is_first = true;
  for (const Query& operand : EachOnce(query.operands)) {
    const Maybe found = ReadNaively(document, operand);
    if (!found && query.kind == Kind::kAnd) return std::nullopt;
    if (!found) continue;
    match.count = query.kind == Kind::kOr ? match.count + found->count
                  : is_first              ? found->count
                                          : std::min(match.count, found->count);
    is_first = false;
    match.positions.insert(match.positions.end(), found->positions.begin(), found->positions.end());
  }
  return is_first ? std::nullopt : Maybe(match);
}

// Whether two positions fit together.
bool Fits(const Query& query, const Query& operand, int before, int after) {
  if (query.kind == Kind::kPhrase) return after == before + 1;
  return before == 0 || (before != after && std::abs(before - after) <= operand.distance_words);
}

Maybe ReadChain(const DocumentOfWords& document, const Query& query) {
  Maybe match = ReadNaively(document, query.operands.front());
  for (std::size_t i = 1; match && i < query.operands.size(); ++i) {
    const Query& operand = query.operands[i];
    const Maybe next = ReadNaively(document, operand);
    if (!next) return std::nullopt;
    std::vector<int> kept;
    for (const int after : next->positions) {
      const auto fits = [&](int before) { return Fits(query, operand, before, after); };
      const bool any = std::any_of(match->positions.begin(), match->positions.end(), fits);
      if (after != 0 && any) kept.push_back(after);
    }
    const bool is_anywhere = std::count(next->positions.begin(), next->positions.end(), 0) > 0;
    if (is_anywhere) {
      kept.insert(kept.end(), match->positions.begin(), match->positions.end());
    }
    match->positions = kept;
    match->count = kept.size();
    if (kept.empty()) return std::nullopt;
  }
  return match;
}

// The smallest distance between positions of two clauses, 0 for none.
int NaiveDistance(const NaiveMatch& left, const NaiveMatch& right) {
  int smallest = 0;
  for (const int a : left.positions) {
    for (const int b : right.positions) {
      const int distance = std::abs(a - b);
      if (a == 0 || b == 0 || distance == 0) continue;
      if (smallest == 0 || distance < smallest) smallest = distance;
    }
  }
  return smallest;
}

// A clause with its weight and what it finds in each document.
struct NaiveClause {
  double idf = 0;
  double times = 1;  // how often the query has it
  std::vector<Maybe> found;
};

std::vector<NaiveClause> ReadClauses(const std::vector<DocumentOfWords>& living,
                                     const Query& query) {
  std::vector<NaiveClause> clauses;
  std::vector<Query> known;
  for (const Query* clause : ScoringClauses(query)) {
    const auto place = std::find(known.begin(), known.end(), *clause);
    if (place != known.end()) {
      clauses[static_cast<std::size_t>(place - known.begin())].times += 1;
      continue;
    }
    known.push_back(*clause);
    NaiveClause read;
    double n = 0;
    for (const DocumentOfWords& document : living) {
      read.found.push_back(ReadNaively(document, *clause));
      n += read.found.back() ? 1 : 0;
    }
    const auto all = static_cast<double>(living.size());
    read.idf = std::log(1 + (all - n + 0.5) / (n + 0.5));
    clauses.push_back(std::move(read));
  }
  for (NaiveClause& clause : clauses) clause.idf *= clause.times;
  return clauses;
}

double NaiveScore(const std::vector<NaiveClause>& clauses, std::size_t document,
                  double relative_length, const SearchOptions& options) {
  double score = 0;
  const bool has_bonuses = (clauses.size() > 1 || options.words == WordsMean::kBest);
  for (std::size_t i = 0; i < clauses.size(); ++i) {
    const Maybe& found = clauses[i].found[document];
    if (!found) continue;
    const int first = *std::min_element(found->positions.begin(), found->positions.end());
    if (has_bonuses && first > 0 && first <= 15) {
      const double nearness = clauses.size() == 1 ? 1 + 1.0 / first : 1;
      score += options.opening_bonus * clauses[i].idf * nearness;
    }
    const auto tf = static_cast<double>(found->count);
    score += clauses[i].idf * tf * (options.k1 + 1) /
             (tf + options.k1 * (1 - options.b + options.b * relative_length));
    if (i + 1 == clauses.size() || !clauses[i + 1].found[document]) continue;
    const double distance = NaiveDistance(*found, *clauses[i + 1].found[document]);
    if (distance == 0) continue;
    score += options.proximity_bonus * std::min(clauses[i].idf, clauses[i + 1].idf) /
             (distance * distance);
  }
  return score;
}

}  // namespace

std::optional<NaiveMatch> ReadNaively(const DocumentOfWords& document, const Query& query) {
  switch (query.kind) {
    case Kind::kAnd:
    case Kind::kOr:
      return ReadJoined(document, query);
    case Kind::kNear:
    case Kind::kPhrase:
      return ReadChain(document, query);
    case Kind::kNot:
      if (ReadNaively(document, query.operands.front())) return std::nullopt;
      return NaiveMatch{1, {0}};
    default:
      return ReadLeaf(document, query);
  }
}

std::map<std::string, double> ScoreNaively(const std::vector<DocumentOfWords>& documents,
                                           const Query& query, const SearchOptions& options) {
  std::vector<DocumentOfWords> living;
  double words = 0;
  for (const DocumentOfWords& document : documents) {
    if (document.is_removed) continue;
    living.push_back(document);
    words += static_cast<double>(document.words.size());
  }
  const double mean = words / static_cast<double>(living.size());
  const std::vector<NaiveClause> clauses = ReadClauses(living, query);
  std::map<std::string, double> scores;
  for (std::size_t i = 0; i < living.size(); ++i) {
    if (!ReadNaively(living[i], query)) continue;
    const std::string& name = living[i].new_name.empty() ? living[i].name : living[i].new_name;
    const auto length = static_cast<double>(living[i].words.size());
    scores[name] = NaiveScore(clauses, i, mean > 0 ? length / mean : 0, options);
  }
  return scores;
}

}  // namespace kestan_tests
