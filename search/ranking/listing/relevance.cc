#include "search/ranking/listing/relevance.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "search/ranking/bm25.h"

namespace kestan::search {
namespace {

// What one clause of the query adds to one document.
struct Contribution {
  double idf = 0;
  double tf = 0;               // how often the document has it
  double query_frequency = 1;  // how often the query has it
};

struct Candidate {
  EngineHit hit;
  std::vector<Contribution> contributions;
  double relative_length = 1;  // to the mean
  double relevance = 0;
};

double RelevanceOf(const Candidate& candidate) {
  double sum = 0;
  for (const auto& [idf, tf, query_frequency] : candidate.contributions) {
    sum += Bm25Score(query_frequency * idf, tf, candidate.relative_length);
  }
  return sum;
}

void SortCandidates(std::vector<Candidate>* candidates) {
  for (Candidate& candidate : *candidates) candidate.relevance = RelevanceOf(candidate);
  std::stable_sort(candidates->begin(), candidates->end(),
                   [](const Candidate& left, const Candidate& right) {
                     return left.relevance > right.relevance;
                   });
}

// Looks up the sizes of the first of `candidates`.
void Measure(const SizeOf& size_of, std::vector<Candidate>* candidates) {
  const std::size_t count = std::min(kMeasuredHits, candidates->size());
  std::vector<std::pair<Candidate*, double>> sizes;
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto size = size_of((*candidates)[i].hit.name);
    if (!size) continue;
    sizes.emplace_back(&(*candidates)[i], static_cast<double>(*size));
    sum += sizes.back().second;
  }
  if (sum <= 0) return;
  const double mean = sum / static_cast<double>(sizes.size());
  for (const auto& [candidate, size] : sizes) candidate->relative_length = size / mean;
}

std::vector<Candidate> CandidatesOf(std::vector<EngineHit>* hits) {
  std::vector<Candidate> candidates(hits->size());
  for (std::size_t i = 0; i < hits->size(); ++i) candidates[i].hit = std::move((*hits)[i]);
  return candidates;
}

// Adds what `clause`, which finds `found`, contributes to each candidate. Both are in ascending
// order of codes.
void AddContributions(const RankedClause& clause, const std::vector<TermFrequency>& found,
                      double documents, std::vector<Candidate>* candidates) {
  const double idf = Idf(static_cast<double>(found.size()), documents);
  const auto query_frequency = static_cast<double>(clause.times);
  auto candidate = candidates->begin();
  for (const auto [code, tf] : found) {
    while (candidate != candidates->end() && candidate->hit.code < code) ++candidate;
    if (candidate == candidates->end()) break;
    if (candidate->hit.code != code) continue;
    const auto at_least_once = static_cast<double>(std::max<std::uint32_t>(tf, 1));
    candidate->contributions.push_back({idf, at_least_once, query_frequency});
  }
}

// Moves the sorted candidates back into `hits`.
void StorePercentages(std::vector<Candidate>* candidates, std::vector<EngineHit>* hits) {
  const double best = candidates->empty() ? 0 : candidates->front().relevance;
  for (std::size_t i = 0; i < candidates->size(); ++i) {
    Candidate& candidate = (*candidates)[i];
    const double share = best > 0 ? candidate.relevance / best : 0;
    candidate.hit.percent = static_cast<int>(std::lround(100 * share));
    (*hits)[i] = std::move(candidate.hit);
  }
}

}  // namespace

void SortByRelevance(const std::vector<RankedClause>& clauses, std::uint64_t documents,
                     const SizeOf& size_of, std::vector<EngineHit>* hits) {
  std::vector<Candidate> candidates = CandidatesOf(hits);
  for (const RankedClause& clause : clauses) {
    AddContributions(clause, clause.documents(), static_cast<double>(documents), &candidates);
  }
  SortCandidates(&candidates);
  Measure(size_of, &candidates);
  SortCandidates(&candidates);
  StorePercentages(&candidates, hits);
}

}  // namespace kestan::search
