// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/proximity.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstdlib>
#include <vector>

#include "tests/search/matching/operators/occurrences.h"

namespace kestan::search {
namespace {

using List = std::vector<Position>;

int Distance(const List& left, const List& right) {
  const Found first = kestan_tests::At({{1, left}});
  const Found second = kestan_tests::At({{1, right}});
  PositionReader first_reader;
  PositionReader second_reader;
  return SmallestDistance(first_reader.Of(*first, 0), second_reader.Of(*second, 0));
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

TEST(ProximityTest, FewAndManyPositionsAreTheSame) {
  for (std::size_t count = 1; count < 100; ++count) {
    List left(count, 7);
    left.back() = 200;
    EXPECT_EQ(Distance(left, {1, 220}), count == 1 ? 20 : 6) << count;
    EXPECT_EQ(Distance({1, 220}, left), count == 1 ? 20 : 6) << count;
    EXPECT_EQ(Distance(left, left), count == 1 ? 0 : 193) << count;
  }
}

TEST(ProximityTest, DistancesOfMoreThan15BitsAreNotCut) {
  EXPECT_EQ(Distance({1}, {32767}), 32766);
  EXPECT_EQ(Distance({1}, {32768}), 32767);
  EXPECT_EQ(Distance({1}, {32769}), 32768);
  EXPECT_EQ(Distance({1, 2}, {65535}), 65533);
}

TEST(ProximityTest, NothingIsNearNothing) {
  EXPECT_EQ(Distance({}, {}), 0);
  EXPECT_EQ(Distance({3}, {}), 0);
  EXPECT_EQ(Distance({1}, {65535}), 65534);
}

RC_GTEST_PROP(ProximityTest, DistanceIsTheSmallestOfAllPairs, ()) {
  const List left = *kestan_tests::AnyPositions(0);
  const List right = *kestan_tests::AnyPositions(0);
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
