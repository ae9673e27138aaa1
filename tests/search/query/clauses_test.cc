// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/clauses.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "search/query/query_parser.h"

namespace kestan::search {
namespace {

using Words = std::vector<std::string>;

// The words of the clauses of `text`; "near" for a clause with operands.
Words Clauses(const std::string& text) {
  const Query query = *ParseQuery(text);
  Words clauses;
  for (const Query* clause : ScoringClauses(query)) {
    clauses.push_back(clause->operands.empty() ? clause->word : "near");
  }
  return clauses;
}

TEST(ClausesTest, ScoringClausesAreWhatAndAndOrJoin) {
  EXPECT_EQ(Clauses("a (b OR c*) \"e f\""), (Words{"a", "b", "c", "near"}));
  EXPECT_EQ(Clauses("a a"), (Words{"a", "a"}));
  EXPECT_EQ(Clauses("a"), Words{"a"});
}

TEST(ClausesTest, WhatIsUnderNotIsNoScoringClause) {
  EXPECT_EQ(Clauses("a -d -(b OR c)"), Words{"a"});
  EXPECT_EQ(Clauses("NOT NOT a"), Words{});
}

TEST(ClausesTest, PhraseIsOneClauseOfSeveralWords) {
  const Query query = *ParseQuery("x \"b a\"", DefaultOperator::kAnd, QuotesMean::kPhrase);
  const auto clauses = ScoringClauses(query);
  ASSERT_EQ(clauses.size(), 2u);
  EXPECT_EQ(clauses[1]->kind, Query::Kind::kPhrase);
}

}  // namespace
}  // namespace kestan::search
