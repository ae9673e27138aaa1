// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/distinct.h"

#include <gtest/gtest.h>

#include <string>

#include "search/query/query_parser.h"

namespace kestan::search {
namespace {

// The words of the operands of `text`, each with its number.
std::string Counted(const std::string& text) {
  const Query query = *ParseQuery(text);
  std::string counted;
  for (const auto& [operand, times] : Distinct(query.operands)) {
    counted += operand->word + std::to_string(times) + " ";
  }
  return counted;
}

TEST(DistinctTest, EachIsThereOnceInItsFirstPlace) {
  EXPECT_EQ(Counted("b a b b c a"), "b3 a2 c1 ");
  EXPECT_EQ(Counted("a b"), "a1 b1 ");
}

TEST(DistinctTest, QueriesThatDifferInOnePlaceAreDistinct) {
  EXPECT_EQ(Counted("a a* a~1 a~2 A"), "a1 a1 a1 a1 A1 ");
  EXPECT_EQ(Counted("(a OR b) (a OR b) (a OR c) (a OR b OR b)"), "2 1 1 ");
}

TEST(DistinctTest, NothingIsNothing) { EXPECT_TRUE(Distinct(std::vector<Query>()).empty()); }

}  // namespace
}  // namespace kestan::search
