// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/clauses.h"

namespace kestan::search {
namespace {

using Kind = Query::Kind;

void CollectClauses(const Query& query, std::vector<const Query*>* clauses) {
  if (query.kind == Kind::kNot) return;
  if (query.kind != Kind::kAnd && query.kind != Kind::kOr && query.kind != Kind::kOptional) {
    clauses->push_back(&query);
    return;
  }
  for (const Query& operand : query.operands) CollectClauses(operand, clauses);
}

}  // namespace

std::vector<const Query*> ScoringClauses(const Query& query) {
  std::vector<const Query*> clauses;
  CollectClauses(query, &clauses);
  return clauses;
}

}  // namespace kestan::search
