// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/ranked_search.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <numeric>
#include <set>
#include <utility>

#include "search/matching/matcher.h"
#include "search/matching/vocabulary.h"
#include "search/query/clauses.h"
#include "search/query/distinct.h"
#include "search/ranking/bm25.h"
#include "search/ranking/filtering.h"
#include "search/ranking/parallel.h"
#include "search/ranking/scorer.h"
#include "search/ranking/top_documents.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

constexpr std::uint64_t kManyDocuments = 100'000;  // worth threads
constexpr double kMaxParameter = 1000;

// Whatever a host hands in, scores are numbers that can be compared.
double InRange(double value, double last) { return value > 0 ? std::min(value, last) : 0.0; }

// The parts of a query without operands, but for what is under NOT.
void CollectLeaves(const Query& query, std::vector<const Query*>* leaves) {
  if (query.kind == Kind::kNot) return;
  if (query.operands.empty()) leaves->push_back(&query);
  for (const Query& operand : query.operands) CollectLeaves(operand, leaves);
}

// Returns about how many postings a search reads in `segment`.
std::uint64_t PostingsToRead(const Query& query, const Segment& segment) {
  if (query.kind == Kind::kPrefix || query.kind == Kind::kFuzzy) return segment.size();
  if (query.operands.empty()) {
    const auto entry = segment.terms().Find(query.word);
    return entry.ok() && *entry ? (*entry)->documents : 0;
  }
  std::uint64_t postings = query.kind == Kind::kNot ? segment.size() : 0;
  for (const Query& operand : query.operands) postings += PostingsToRead(operand, segment);
  return postings;
}

// Returns how many threads are worth starting.
std::size_t ThreadsFor(const Query& query, const Snapshot& snapshot) {
  if (snapshot.segments.size() < 2 || snapshot.living_documents() < kManyDocuments) return 1;
  std::uint64_t postings = 0;
  for (const auto& segment : snapshot.segments) postings += PostingsToRead(query, *segment);
  return postings < kManyDocuments ? 1 : snapshot.segments.size();
}

// Leaves out what `filter` does not want of the matches in a segment.
Status Filter(const DocumentFilter& filter, const Snapshot& snapshot, std::size_t segment,
              Found* matches) {
  Occurrences wanted;
  wanted.codes = (*matches)->codes;
  const std::size_t index = snapshot.index_of_segment[segment];
  Status status = Filter(filter, *snapshot.segments[segment], index, &wanted.codes);
  *matches = std::make_shared<const Occurrences>(std::move(wanted));
  return status;
}

// What one search does in one segment.
struct SegmentSearch {
  std::unique_ptr<Matcher> matcher;
  ClauseMatches clauses;
  Found matches;
  Status status;
  std::vector<double> scores;        // without a limit
  std::vector<RankedDocument> best;  // with one
};

// One search, from the segments to the best documents.
class Search {
 public:
  Search(const Query& query, const Snapshot& snapshot, const SearchOptions& options)
      : query_(query),
        snapshot_(snapshot),
        limit_(options.limit),
        ranks_openings_of_words_(options.words == WordsMean::kBest),
        filter_(options.filter),
        clauses_(Distinct(ScoringClauses(query))),
        threads_(ThreadsFor(query, snapshot)),
        searches_(snapshot.segments.size()) {
    parameters_.k1 = InRange(options.k1, kMaxParameter);
    parameters_.b = InRange(options.b, 1);
    parameters_.proximity_bonus = InRange(options.proximity_bonus, kMaxParameter);
    parameters_.opening_bonus = InRange(options.opening_bonus, kMaxParameter);
  }

  Result<RankedDocuments> Ranked() {
    Status status = Run();
    if (!status.ok()) return status;
    return Merged();
  }

  // Without a limit only.
  Result<std::vector<ScoredDocuments>> Scored() {
    Status status = Run();
    if (!status.ok()) return status;
    std::vector<ScoredDocuments> scored;
    for (std::size_t i = 0; i < searches_.size(); ++i) {
      if (searches_[i].matches->size() == 0) continue;
      scored.push_back({static_cast<std::uint32_t>(i), searches_[i].matches->codes,
                        std::move(searches_[i].scores)});
    }
    return scored;
  }

 private:
  Status Run() {
    ParallelFor(searches_.size(), threads_, [this](std::size_t i) { Match(i); });
    for (const SegmentSearch& search : searches_) {
      if (!search.status.ok()) return search.status;
    }
    WeighClauses();
    ParallelFor(searches_.size(), threads_, [this](std::size_t i) { Rank(i); });
    return StatusOfTables();
  }

  // Numbers of words and names were read from them.
  Status StatusOfTables() const {
    for (const auto& segment : snapshot_.segments) {
      Status status = segment->table().status();
      if (!status.ok()) return status;
    }
    return {};
  }

  void Match(std::size_t i) {
    SegmentSearch& search = searches_[i];
    const Segment& segment = *snapshot_.segments[i];
    const bool ranks_places = clauses_.size() > 1
                                  ? parameters_.proximity_bonus > 0 || parameters_.opening_bonus > 0
                                  : ranks_openings_of_words_ && parameters_.opening_bonus > 0;
    search.matcher = std::make_unique<Matcher>(segment, snapshot_.LanguageOf(i));
    search.clauses.with_positions = ranks_places && segment.with_positions();
    for (const Repeated& clause : clauses_) {
      const Need need = ranks_places ? Need::kPositions : Need::kCounts;
      search.clauses.clauses.push_back(search.matcher->Find(*clause.query, need));
    }
    search.matches = search.matcher->Find(query_, Need::kCodes);
    search.status = search.matcher->status();
    if (filter_ && search.status.ok()) {
      search.status = Filter(filter_, snapshot_, i, &search.matches);
    }
  }

  void WeighClauses() {
    const auto documents = static_cast<double>(snapshot_.living_documents());
    const auto words = static_cast<double>(snapshot_.living_words());
    parameters_.mean_words = words > 0 ? words / documents : 1;
    const double exponent = IdfExponent(clauses_.size());
    for (std::size_t clause = 0; clause < clauses_.size(); ++clause) {
      std::uint64_t found = 0;
      for (const SegmentSearch& search : searches_) found += search.clauses.clauses[clause]->size();
      const double idf = std::pow(Idf(static_cast<double>(found), documents), exponent);
      parameters_.idfs.push_back(static_cast<double>(clauses_[clause].times) * idf);
    }
  }

  void Rank(std::size_t i) {
    SegmentSearch& search = searches_[i];
    const std::vector<Code>& codes = search.matches->codes;
    Scorer scorer(*snapshot_.segments[i], parameters_, search.clauses);
    if (limit_ == 0) {
      search.scores = scorer.Scores(codes);
    } else {
      search.best = BestOf(i, codes, scorer.Bm25Scores(codes), &scorer);
    }
  }

  std::vector<RankedDocument> BestOf(std::size_t segment, const std::vector<Code>& codes,
                                     const std::vector<double>& scores, Scorer* scorer) const {
    const double greatest_bonus = scorer->GreatestBonus();
    const double least_of_all = greatest_bonus > 0 ? LeastOfBest(scores) : 0;
    TopDocuments best(limit_);
    for (std::size_t i = 0; i < codes.size(); ++i) {
      const double least = std::max(least_of_all, best.least_score());
      if (!MayReach(scores[i] + greatest_bonus, least)) continue;
      const double bonus = greatest_bonus > 0 ? scorer->BonusOf(codes[i], scores[i], least) : 0;
      best.Add({{static_cast<std::uint32_t>(segment), codes[i]}, scores[i] + bonus});
    }
    return best.Take();
  }

  // Returns the score that documents need to be among the best of a segment, if places of
  // words add nothing to any of them. As it takes nothing away, no document of a lower score in the
  // end is.
  double LeastOfBest(const std::vector<double>& scores) const {
    if (scores.size() <= limit_) return 0;
    std::vector<double> best(limit_);
    std::partial_sort_copy(scores.begin(), scores.end(), best.begin(), best.end(),
                           std::greater<>());
    return best.back();
  }

  Result<RankedDocuments> Merged() {
    RankedDocuments ranked;
    for (const SegmentSearch& search : searches_) ranked.total += search.matches->size();
    TopDocuments best(limit_);
    best.Expect(static_cast<std::size_t>(ranked.total));
    for (std::size_t i = 0; i < searches_.size(); ++i) {
      for (const RankedDocument& document : searches_[i].best) best.Add(document);
      for (std::size_t j = 0; j < searches_[i].scores.size(); ++j) {
        best.Add({{static_cast<std::uint32_t>(i), searches_[i].matches->codes[j]},
                  searches_[i].scores[j]});
      }
    }
    ranked.best = best.TakeSorted(snapshot_);
    Status status = StatusOfTables();
    if (!status.ok()) return status;
    ranked.terms = MatchedTerms();
    return ranked;
  }

  std::vector<std::string> MatchedTerms() const {
    std::vector<const Query*> leaves;
    CollectLeaves(query_, &leaves);
    std::set<std::string> terms;
    for (const SegmentSearch& search : searches_) {
      for (const Query* leaf : leaves) {
        const std::vector<std::string>& found = search.matcher->TermsOf(*leaf);
        terms.insert(found.begin(), found.end());
      }
    }
    return {terms.begin(), terms.end()};
  }

  const Query& query_;
  const Snapshot& snapshot_;
  const std::size_t limit_;
  const bool ranks_openings_of_words_;  // in queries of one clause too
  const DocumentFilter& filter_;
  const std::vector<Repeated> clauses_;
  const std::size_t threads_;
  ScoringParameters parameters_;
  std::vector<SegmentSearch> searches_;
};

}  // namespace

Result<RankedDocuments> RankedSearch(const Query& query, const Snapshot& snapshot,
                                     const SearchOptions& options) {
  return Search(query, snapshot, options).Ranked();
}

Result<std::vector<ScoredDocuments>> ScoredSearch(const Query& query, const Snapshot& snapshot,
                                                  SearchOptions options) {
  options.limit = 0;
  return Search(query, snapshot, options).Scored();
}

Result<std::uint64_t> CountMatches(const Query& query, const Snapshot& snapshot,
                                   const DocumentFilter& filter) {
  if (query.kind == Kind::kWord && !filter) return LivingDocumentsWith(snapshot, query.word);
  std::vector<std::uint64_t> counts(snapshot.segments.size());
  std::vector<Status> statuses(counts.size());
  ParallelFor(counts.size(), ThreadsFor(query, snapshot), [&](std::size_t i) {
    Matcher matcher(*snapshot.segments[i], snapshot.LanguageOf(i));
    Found matches = matcher.Find(query, Need::kCodes);
    statuses[i] = matcher.status();
    if (filter && statuses[i].ok()) statuses[i] = Filter(filter, snapshot, i, &matches);
    counts[i] = matches->size();
  });
  for (const Status& status : statuses) {
    if (!status.ok()) return status;
  }
  return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
}

}  // namespace kestan::search
