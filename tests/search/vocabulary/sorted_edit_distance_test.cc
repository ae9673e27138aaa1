// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/sorted_edit_distance.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/search/vocabulary/edit_distance.h"

namespace kestan::search {
namespace {

TEST(SortedEditDistanceTest, WordsThatShareABeginningAreEachAsFarAsTheyAre) {
  SortedEditDistance<char> distance("flow", 2);
  EXPECT_EQ(distance.To("flaw"), 1);
  EXPECT_EQ(distance.To("flawed"), 3);
  EXPECT_EQ(distance.To("flow"), 0);
  EXPECT_EQ(distance.To("flows"), 1);
  EXPECT_EQ(distance.To("flwo"), 1);
  EXPECT_EQ(distance.To("zebra"), 3);
  EXPECT_EQ(distance.To("low"), 1);
}

TEST(SortedEditDistanceTest, EmptyWordsAreAsFarAsTheOtherIsLong) {
  EXPECT_EQ(SortedEditDistance<char>("", 2).To("ab"), 2);
  EXPECT_EQ(SortedEditDistance<char>("", 2).To("abc"), 3);
  EXPECT_EQ(SortedEditDistance<char>("ab", 2).To(""), 2);
  EXPECT_EQ(SortedEditDistance<char>("", 0).To(""), 0);
}

RC_GTEST_PROP(SortedEditDistanceTest, DistancesAreThoseOfWordsOneByOne, ()) {
  const auto word = rc::gen::container<std::string>(rc::gen::inRange('a', 'd'));
  const std::string to = *word;
  auto others = *rc::gen::container<std::vector<std::string>>(word);
  if (*rc::gen::arbitrary<bool>()) std::sort(others.begin(), others.end());
  const int limit = *rc::gen::inRange(0, 4);
  SortedEditDistance<char> distance(to, limit);
  for (const std::string& other : others) {
    RC_ASSERT(distance.To(other) == BoundedEditDistance(to, other, limit));
  }
}

}  // namespace
}  // namespace kestan::search
