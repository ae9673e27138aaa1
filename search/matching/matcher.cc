// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/matcher.h"

#include <algorithm>
#include <utility>

#include "search/matching/leaf_terms.h"
#include "search/matching/operators/operators.h"
#include "search/query/distinct.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

const std::vector<std::string> kNoTerms;

// Returns the operands of AND or OR that decide what it finds, each once.
std::vector<Repeated> DecidingOperands(const Query& query) {
  std::vector<Repeated> operands = Distinct(query.operands);
  const auto is_optional = [](const Repeated& operand) {
    return operand.query->kind == Kind::kOptional;
  };
  operands.erase(std::remove_if(operands.begin(), operands.end(), is_optional), operands.end());
  return operands;
}

Query WithoutDistance(const Query& query) {
  Query key = query;
  key.distance_words = 0;
  return key;
}

Found Shared(Occurrences found) { return std::make_shared<const Occurrences>(std::move(found)); }

}  // namespace

Found Matcher::Find(const Query& query, Need need) {
  if (!segment_.with_positions()) need = std::min(need, Need::kCounts);
  if (query.kind == Kind::kAnd) return FindAnd(query, need);
  if (query.kind == Kind::kOr) return FindOr(query, need);
  if (query.kind == Kind::kOptional) return Find(query.operands.front(), need);
  if (query.kind == Kind::kNot) {
    const Found operand = Find(query.operands.front(), Need::kCodes);
    return Shared(Subtract(segment_, *operand, need));
  }
  Known& known = known_[WithoutDistance(query)];
  if (known.found != nullptr && known.need >= need) return known.found;
  known.need = need;
  if (query.kind == Kind::kNear) {
    known.found = FindNear(query, need);
  } else if (query.kind == Kind::kPhrase) {
    known.found = FindPhrase(query, need);
  } else {
    known.found = Shared(FindLeaf(query, need, &known.terms));
  }
  return known.found;
}

const std::vector<std::string>& Matcher::TermsOf(const Query& leaf) const {
  const auto known = known_.find(WithoutDistance(leaf));
  return known == known_.end() ? kNoTerms : known->second.terms;
}

// Where codes are all that is needed, the documents of an operand NOT are not found but left out.
Found Matcher::FindAnd(const Query& query, Need need) {
  const std::vector<Repeated> deciding = DecidingOperands(query);
  const auto is_found = [](const Repeated& operand) { return operand.query->kind != Kind::kNot; };
  const bool excludes =
      need == Need::kCodes && std::any_of(deciding.begin(), deciding.end(), is_found);
  std::vector<Found> operands;
  std::vector<Found> excluded;
  for (const Repeated& operand : deciding) {
    if (excludes && !is_found(operand)) {
      excluded.push_back(Find(operand.query->operands.front(), Need::kCodes));
    } else {
      operands.push_back(Find(*operand.query, need));
    }
  }
  if (operands.size() == 1 && excluded.empty()) return operands.front();
  Occurrences found = Intersect(operands, need);
  for (const Found& operand : excluded) Exclude(*operand, &found.codes);
  return Shared(std::move(found));
}

Found Matcher::FindOr(const Query& query, Need need) {
  const std::vector<Repeated> operands = DecidingOperands(query);
  if (operands.size() == 1) return Find(*operands.front().query, need);
  OccurrenceUnion all(segment_.size(), need);
  for (const Repeated& operand : operands) all.Add(*Find(*operand.query, need));
  return Shared(all.Take());
}

Found Matcher::FindNear(const Query& query, Need need) {
  if (!segment_.with_positions()) return FindAnd(query, need);
  std::vector<Found> operands;
  std::vector<int> distances;
  for (const Query& operand : query.operands) {
    operands.push_back(Find(operand, Need::kPositions));
    distances.push_back(operand.distance_words);
  }
  return Shared(Near(operands, distances, need));
}

Found Matcher::FindPhrase(const Query& query, Need need) {
  if (!segment_.with_positions()) return FindAnd(query, need);
  std::vector<Found> operands;
  for (const Query& operand : query.operands) operands.push_back(Find(operand, Need::kPositions));
  return Shared(Phrase(operands, need));
}

Occurrences Matcher::FindLeaf(const Query& leaf, Need need, std::vector<std::string>* terms) {
  terms->clear();
  std::optional<Occurrences> only;
  std::optional<OccurrenceUnion> several;
  const Status status =
      ForEachTermOf(segment_.terms(), leaf, &stemmer_, [&](const TermEntry& entry) {
        const Result<TermPostings> postings = segment_.PostingsOf(entry);
        if (!postings.ok()) return postings.status();
        Result<Occurrences> found = ReadTerm(*postings, segment_, need);
        if (!found.ok()) return found.status();
        if (found->size() == 0) return Status();
        terms->emplace_back(entry.term);
        if (several) {
          several->Add(*found);
        } else if (only) {
          several.emplace(segment_.size(), need);
          several->Add(*only);
          several->Add(*found);
        } else {
          only = std::move(*found);
        }
        return Status();
      });
  if (!status.ok() && status_.ok()) status_ = status;
  if (several) return several->Take();
  return only ? std::move(*only) : Occurrences();
}

}  // namespace kestan::search
