// SPDX-License-Identifier: GPL-3.0-or-later
// The quick way of matching positions against the slow, plain one: all pairs.
#include <kestan/query/operators/proximity.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

using PositionVector = std::vector<kestan::Position>;

struct Match {
  PositionVector found;
  std::uint32_t bonus;

  friend bool operator==(const Match& left, const Match& right) {
    return left.found == right.found && left.bonus == right.bonus;
  }
  friend std::ostream& operator<<(std::ostream& out, const Match& match) {
    out << "bonus " << match.bonus << ", found";
    for (const kestan::Position position : match.found) out << ' ' << position;
    return out;
  }
};

Match AllPairs(const PositionVector& first, const PositionVector& second, std::int64_t distance) {
  std::set<kestan::Position> found;
  std::uint32_t bonus = 0;
  for (const std::int64_t a : first) {
    for (const std::int64_t b : second) {
      const std::int64_t apart = std::abs(b - a);
      const bool known = a != 0 && b != 0;
      if (known && distance != 0 && (apart == 0 || apart > distance)) continue;
      if (known && apart <= 20) bonus += static_cast<std::uint32_t>(401 - apart * apart);
      found.insert(static_cast<kestan::Position>(b == 0 ? a : b));
    }
  }
  PositionVector kept(found.begin(), found.end());
  if (kept.size() > 65535) kept.resize(65535);
  return {kept, bonus};
}

Match Matched(kestan::ProximityMatcher* matcher, const PositionVector& first,
              const PositionVector& second) {
  matcher->Match({first.data(), first.size()}, {second.data(), second.size()});
  return {{matcher->found().begin(), matcher->found().end()}, matcher->bonus()};
}

// Distances on both sides of every limit.
rc::Gen<int> AnyDistance() {
  return rc::gen::element(0, 1, 2, 3, 19, 20, 21, 22, 40, 65535, INT_MAX, -1, -20, INT_MIN);
}

// Positions that lie close together, so that many pairs are near.
rc::Gen<PositionVector> AnyPositions() {
  return rc::gen::container<PositionVector>(rc::gen::inRange<kestan::Position>(0, 120));
}

PositionVector Ascending(const PositionVector& positions) {
  const std::set<kestan::Position> sorted(positions.begin(), positions.end());
  PositionVector ascending(sorted.begin(), sorted.end());
  if (!ascending.empty() && ascending.front() == 0) ascending.erase(ascending.begin());
  return ascending;
}

RC_GTEST_PROP(ProximityMatcherTest, MatchesAscendingPositionsAsAllPairsDo, ()) {
  const int distance = *AnyDistance();
  kestan::ProximityMatcher matcher(distance);
  for (int round = 0; round < 3; ++round) {
    const PositionVector first = Ascending(*AnyPositions());
    const PositionVector second = Ascending(*AnyPositions());
    RC_ASSERT(Matched(&matcher, first, second) == AllPairs(first, second, distance));
  }
}

RC_GTEST_PROP(ProximityMatcherTest, MatchesAnyPositionsAsAllPairsDo, ()) {
  const int distance = *AnyDistance();
  kestan::ProximityMatcher matcher(distance);
  for (int round = 0; round < 3; ++round) {
    const PositionVector first = *AnyPositions();
    const PositionVector second = *AnyPositions();
    RC_ASSERT(Matched(&matcher, first, second) == AllPairs(first, second, distance));
  }
}

TEST(ProximityMatcherTest, MatchesTheHighestPositionsAsAllPairsDo) {
  const PositionVector first = {1, 2, 3, 65530, 65533, 65535};
  const PositionVector second = {1, 21, 22, 65510, 65534, 65535};
  for (const int distance : {0, 1, 20, 21, 65534, INT_MAX, -1, INT_MIN}) {
    kestan::ProximityMatcher matcher(distance);
    EXPECT_EQ(Matched(&matcher, first, second), AllPairs(first, second, distance)) << distance;
  }
}

TEST(ProximityMatcherTest, OfAllPositionsKeepsAsManyAsADocumentCanHave) {
  PositionVector all(65536);
  std::iota(all.begin(), all.end(), kestan::Position{0});
  kestan::ProximityMatcher matcher(0);
  const Match match = Matched(&matcher, {0}, all);
  EXPECT_EQ(match.found, PositionVector(all.begin(), all.end() - 1));
}

// So many that all pairs are no longer looked at one by one: in any order, many of them several
// times, at either end of the range.
PositionVector ManyPositions(std::mt19937* draw, unsigned least, unsigned range) {
  PositionVector positions(300);
  std::uniform_int_distribution<unsigned> any(least, std::min(least + range, 65535u));
  for (kestan::Position& position : positions) position = static_cast<kestan::Position>(any(*draw));
  return positions;
}

RC_GTEST_PROP(ProximityMatcherTest, MatchesManyPositionsAsAllPairsDo, ()) {
  std::mt19937 draw(*rc::gen::arbitrary<unsigned>());
  const unsigned range = *rc::gen::element(5u, 100u, 2000u, 65535u);
  for (const unsigned least : {0u, 1u, 65435u}) {
    const int distance = *AnyDistance();
    kestan::ProximityMatcher matcher(distance);
    const PositionVector first = ManyPositions(&draw, least, range);
    const PositionVector second = ManyPositions(&draw, least, range);
    RC_ASSERT(Matched(&matcher, first, second) == AllPairs(first, second, distance));
  }
}

// The positions of two words that take turns, each `times` times, counted on from 1 after 65535.
std::pair<PositionVector, PositionVector> TakingTurns(unsigned times) {
  std::pair<PositionVector, PositionVector> words;
  for (unsigned i = 0; i < times; ++i) {
    words.first.push_back(static_cast<kestan::Position>(2 * i % 65535 + 1));
    words.second.push_back(static_cast<kestan::Position>((2 * i + 1) % 65535 + 1));
  }
  return words;
}

// All pairs would be billions; these take milliseconds, with a wide margin for slow machines.
TEST(ProximityMatcherTest, TakesNoTimeForTwoWordsThatFillADocument) {
  const auto [odd, even] = TakingTurns(30000);
  kestan::ProximityMatcher matcher(1);
  const auto start = std::chrono::steady_clock::now();
  const Match match = Matched(&matcher, odd, even);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_EQ(match.found, even);
  EXPECT_EQ(match.bonus, 400u * (2 * 30000 - 1));
}

TEST(ProximityMatcherTest, TakesNoTimeWhereThePositionsOfTwoWordsWrapAround) {
  const auto [first, second] = TakingTurns(60000);
  kestan::ProximityMatcher matcher(1);
  const auto start = std::chrono::steady_clock::now();
  const Match match = Matched(&matcher, first, second);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_EQ(match.found, Ascending(second));
  EXPECT_EQ(match.bonus, 400u * (2 * 60000 - 2));  // one pair stands at 65535 and 1
}

TEST(ProximityMatcherTest, CountsTheBonusModulo32Bits) {
  PositionVector same(65535, 7);  // 401 for each pair
  kestan::ProximityMatcher matcher(0);
  const Match match = Matched(&matcher, same, PositionVector(100, 7));
  EXPECT_EQ(match.bonus, static_cast<std::uint32_t>(401ull * 65535 * 100));
  EXPECT_EQ(match.found, PositionVector{7});
}

}  // namespace
