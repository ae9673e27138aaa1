// SPDX-License-Identifier: GPL-3.0-or-later
// Scores of the documents of one segment.
#ifndef KESTAN_SEARCH_RANKING_SCORER_H_
#define KESTAN_SEARCH_RANKING_SCORER_H_

#include <cstddef>
#include <vector>

#include "search/matching/matcher.h"
#include "search/matching/operators/common.h"
#include "search/segment/segment.h"

namespace kestan::search {

// What is the same for all segments.
struct ScoringParameters {
  double k1 = 0;
  double b = 0;
  double mean_words = 1;     // of living documents
  std::vector<double> idfs;  // of each clause, times how often the query has it
  double proximity_bonus = 0;
  double opening_bonus = 0;
};

// A document opens with so many words, which are likely to be its title or to say what it is about.
constexpr Position kOpeningWords = 15;

// Returns whether a score may be `least` or more, whose parts make `most` if they are added in
// another order, which rounds otherwise.
inline bool MayReach(double most, double least) {
  constexpr double kRounding = 1 + 1e-9;
  return most * kRounding >= least;
}

// The occurrences of each clause in one segment, in the order of the idfs. Where they stand counts
// only where positions are known.
struct ClauseMatches {
  std::vector<Found> clauses;
  bool with_positions = false;
};

// Computes the scores of documents that match. All arithmetic is done in one order, so that a score
// depends on the document and the parameters alone.
class Scorer {
 public:
  // Borrows all.
  Scorer(const Segment& segment, const ScoringParameters& parameters, const ClauseMatches& matches)
      : segment_(segment), parameters_(parameters), matches_(matches) {}

  // Returns the sums of the BM25 scores of all clauses for `codes`, which ascend.
  std::vector<double> Bm25Scores(const std::vector<Code>& codes) const;

  // Returns the most that places of words can add to a score.
  double GreatestBonus() const;

  // Returns what the places of words add to `score`, that of the document `code`; if that makes
  // less than `least`, anything that also does. Called in ascending order.
  double BonusOf(Code code, double score, double least);

  // Returns the sums of both for `codes`, which ascend.
  std::vector<double> Scores(const std::vector<Code>& codes);

 private:
  // The places of the shorter list of codes in the longer one: those to be scored and those of a
  // clause.
  struct Link {
    bool is_of_codes = false;  // the ones to be scored are no more than those of the clause
    std::vector<Place> places;
  };

  std::vector<double> LengthNorms(const std::vector<Code>& codes) const;
  Link LinkOf(std::size_t clause, const std::vector<Code>& codes) const;
  void AddClause(std::size_t clause, const Link& link, const std::vector<double>& length_norms,
                 std::vector<double>* scores, std::vector<double>* bonuses) const;
  void AddPairs(std::size_t clause, const std::vector<Code>& codes, const std::vector<Link>& links,
                std::vector<double>* bonuses);
  double ClauseWeight(std::size_t clause) const;
  double PairWeight(std::size_t clause) const;
  double OpeningBonus(std::size_t clause, Position first) const;
  double GreatestPairs() const;
  double BonusOfPair(std::size_t clause, std::size_t left, std::size_t right);

  const Segment& segment_;
  const ScoringParameters& parameters_;
  const ClauseMatches& matches_;
  Places places_;
  std::vector<std::size_t> document_places_;  // of the one that was looked at last, by clauses
  PositionReader left_;
  PositionReader right_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_SCORER_H_
