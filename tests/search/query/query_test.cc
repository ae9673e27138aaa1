// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "search/query/query_parser.h"

namespace kestan::search {
namespace {

// Queries that differ from each other in a single place.
std::vector<Query> DifferentQueries() {
  std::vector<Query> queries;
  for (const char* text : {"a", "b", "A", "a*", "a~1", "a~2", "NOT a", "a NEAR/1 b", "a NEAR/2 b",
                           "a b", "a OR b", "a b c", "a (b c)", "(a OR b) c", "(a OR c) c"}) {
    queries.push_back(*ParseQuery(text));
  }
  queries.push_back(*ParseQuery("b", DefaultOperator::kOr));
  return queries;
}

TEST(QueryTest, QueriesEqualThemselvesOnly) {
  const std::vector<Query> queries = DifferentQueries();
  const std::vector<Query> others = DifferentQueries();
  for (std::size_t i = 0; i < queries.size(); ++i) {
    for (std::size_t j = 0; j < others.size(); ++j) {
      EXPECT_EQ(queries[i] == others[j], i == j) << i << " " << j;
    }
  }
}

TEST(QueryTest, OrderOfQueriesIsTotal) {
  const std::vector<Query> queries = DifferentQueries();
  const QueryLess less;
  for (const Query& left : queries) {
    EXPECT_FALSE(less(&left, &left));
    for (const Query& right : queries) {
      EXPECT_EQ(less(&left, &right) != less(&right, &left), &left != &right);
      for (const Query& third : queries) {
        const bool is_chain = less(&left, &right) && less(&right, &third);
        EXPECT_TRUE(!is_chain || less(&left, &third));
      }
    }
  }
}

}  // namespace
}  // namespace kestan::search
