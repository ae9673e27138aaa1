// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <vector>

#include "tests/search/matching/operators/occurrences.h"

namespace kestan::search {
namespace {

using kestan_tests::At;
using kestan_tests::Places;
using kestan_tests::PlacesIn;
using List = std::vector<Position>;

Places NearPlaces(const Places& first, int distance, const Places& second) {
  return PlacesIn(Near({At(first), At(second)}, {0, distance}, Need::kPositions));
}

// In one document, of two words.
List NearIn(const List& first, int distance, const List& second) {
  const Places found = NearPlaces({{1, first}}, distance, {{1, second}});
  return found.empty() ? List{} : found.at(1);
}

TEST(NearTest, DistanceCountsInEitherOrder) {
  EXPECT_EQ(NearIn({10}, 3, {13}), List{13});
  EXPECT_EQ(NearIn({10}, 2, {13}), List{});
  EXPECT_EQ(NearIn({13}, 3, {10}), List{10});
  EXPECT_EQ(NearIn({13}, 2, {10}), List{});
}

TEST(NearTest, SamePlaceIsNotNear) {
  EXPECT_EQ(NearIn({10}, 3, {10}), List{});
  EXPECT_EQ(NearIn({10, 11}, 3, {10}), List{10});
}

TEST(NearTest, PositionsOfTheLastOperandAreKept) {
  EXPECT_EQ(NearIn({5, 100}, 2, {3, 6, 50, 99}), (List{3, 6, 99}));
}

TEST(NearTest, FewAndManyPositionsAreTheSame) {
  for (std::size_t count = 1; count < 100; ++count) {
    const List last_is_near(count, 10);
    EXPECT_EQ(NearIn({4, 12}, 2, last_is_near), last_is_near) << count;
    List last_is_far(count, 10);
    last_is_far.push_back(100);
    EXPECT_EQ(NearIn({4, 12}, 2, last_is_far), last_is_near) << count;
    EXPECT_EQ(NearIn(last_is_far, 2, {4, 12}), List{12}) << count;
  }
}

TEST(NearTest, DistancesOfMoreThan15BitsAreNotCut) {
  EXPECT_EQ(NearIn({1}, 32766, {32767}), List{32767});
  EXPECT_EQ(NearIn({1}, 32765, {32767}), List{});
  EXPECT_EQ(NearIn({1}, 32767, {32768}), List{32768});
  EXPECT_EQ(NearIn({1}, 32766, {32768}), List{});
  EXPECT_EQ(NearIn({1}, 40000, {1}), List{});
}

TEST(NearTest, CountIsTheNumberOfPositionsKept) {
  const Occurrences found = Near({At({{4, {5}}}), At({{4, {3, 6, 50}}})}, {0, 2}, Need::kCounts);
  EXPECT_EQ(found.counts, std::vector<std::uint32_t>{2});
}

TEST(NearTest, EachOperandHasItsOwnDistance) {
  const auto chain = [](int first, int second) {
    return PlacesIn(Near({At({{1, {10}}}), At({{1, {12}}}), At({{1, {17}}})}, {0, first, second},
                         Need::kPositions));
  };
  EXPECT_EQ(chain(2, 5), (Places{{1, {17}}}));
  EXPECT_EQ(chain(1, 5), Places{});
  EXPECT_EQ(chain(2, 4), Places{});
}

TEST(NearTest, DocumentsWithoutOneOperandDoNotMatch) {
  EXPECT_EQ(NearPlaces({{1, {1}}, {3, {1}}}, 1, {{2, {2}}, {3, {2}}}), (Places{{3, {2}}}));
  EXPECT_EQ(NearPlaces({}, 1, {{2, {2}}}), Places{});
}

TEST(NearTest, LargestDistanceReachesTheWholeDocument) {
  EXPECT_EQ(NearIn({65535}, std::numeric_limits<int>::max(), {1}), List{1});
}

TEST(NearTest, NothingIsNearBeyondTheLastPosition) { EXPECT_EQ(NearIn({65535}, 2, {1}), List{}); }

TEST(NearTest, WhatMayBeAnywhereIsNearEverything) {
  EXPECT_EQ(NearIn({0}, 1, {9}), List{9});
  EXPECT_EQ(NearIn({9}, 1, {0}), List{9});
  EXPECT_EQ(NearIn({2}, 8, {0}), List{2});
  EXPECT_EQ(NearIn({2}, 8, {0, 3}), (List{2, 3}));
  EXPECT_EQ(NearIn({0}, 1, {0}), List{0});
  EXPECT_EQ(NearIn({0, 3}, 1, {9}), List{9});
}

RC_GTEST_PROP(NearTest, PositionsAreThoseOfAllPairs, ()) {
  const List first = *kestan_tests::AnyPositions(1);
  const List second = *kestan_tests::AnyPositions(1);
  RC_PRE(!first.empty() && !second.empty());
  const int distance = *rc::gen::oneOf(rc::gen::inRange(0, 8), rc::gen::inRange(0, 70000));
  List expected;
  for (const Position b : second) {
    const auto fits = [&](int a) { return a != b && std::abs(a - b) <= distance; };
    if (std::any_of(first.begin(), first.end(), fits)) expected.push_back(b);
  }
  RC_ASSERT(NearIn(first, distance, second) == expected);
}

TEST(NearTest, ListsOfOnePositionTakeNoQuadraticTime) {
  const List same(65535, Position{7});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(NearIn(same, 3, same), List{});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

}  // namespace
}  // namespace kestan::search
