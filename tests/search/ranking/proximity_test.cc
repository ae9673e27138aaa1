#include "search/ranking/proximity.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace kestan::search {
namespace {

using List = std::vector<Position>;

int Distance(const List& left, const List& right) {
  return SmallestDistance({left.data(), left.size()}, {right.data(), right.size()});
}

TEST(ProximityTest, NearestPairCounts) {
  EXPECT_EQ(Distance({1, 50, 90}, {20, 47}), 3);
  EXPECT_EQ(Distance({20, 47}, {1, 50, 90}), 3);
}

TEST(ProximityTest, SamePlaceIsLeftOut) {
  EXPECT_EQ(Distance({5}, {5}), 0);
  EXPECT_EQ(Distance({5, 9}, {5}), 4);
  EXPECT_EQ(Distance({5}, {1, 5}), 4);
}

TEST(ProximityTest, WhatMayBeAnywhereIsLeftOut) {
  EXPECT_EQ(Distance({0}, {1}), 0);
  EXPECT_EQ(Distance({0, 9}, {0, 4}), 5);
}

TEST(ProximityTest, NothingIsNearNothing) {
  EXPECT_EQ(Distance({}, {}), 0);
  EXPECT_EQ(Distance({3}, {}), 0);
  EXPECT_EQ(Distance({1}, {65535}), 65534);
}

RC_GTEST_PROP(ProximityTest, DistanceIsTheSmallestOfAllPairs, ()) {
  const auto list =
      rc::gen::map(rc::gen::container<List>(rc::gen::inRange<Position>(0, 60)), [](List positions) {
        std::sort(positions.begin(), positions.end());
        return positions;
      });
  const List left = *list;
  const List right = *list;
  int expected = 0;
  for (const int a : left) {
    for (const int b : right) {
      const int distance = std::abs(a - b);
      if (a == 0 || b == 0 || distance == 0) continue;
      if (expected == 0 || distance < expected) expected = distance;
    }
  }
  RC_ASSERT(Distance(left, right) == expected);
}

}  // namespace
}  // namespace kestan::search
