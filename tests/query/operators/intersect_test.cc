// SPDX-License-Identifier: GPL-3.0-or-later
// AND, within a distance or not, through Kestan::QueryAnd.
#include <climits>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class QueryAndTest : public QueryTest {
 protected:
  // Combines a word at `first` with one at `second`, both in document 1 alone.
  Hits Both(const Numbers& first, const Numbers& second, int distance) {
    const int first_id = At(first);
    return HitsOf(And(first_id, At(second), distance));
  }
};

TEST_F(QueryAndTest, KeepsTheDocumentsOfBoth) {
  const int first = Postings(EncodedPosting(1, {1}) + EncodedPosting(3, {1}) +
                             EncodedPosting(5, {1}) + EncodedPosting(7, {1}));
  const int second = Postings(EncodedPosting(2, {50}) + EncodedPosting(3, {51}) +
                              EncodedPosting(7, {52}) + EncodedPosting(9, {53}));
  EXPECT_EQ(HitsOf(And(first, second, 0)), (Hits{{3, 2, {51}}, {7, 2, {52}}}));
  EXPECT_EQ(HitsOf(And(second, first, 0)), (Hits{{3, 2, {1}}, {7, 2, {1}}}));
}

TEST_F(QueryAndTest, IsEmptyWhereNoDocumentIsInBoth) {
  const int first = Postings(EncodedPosting(1, {1}));
  EXPECT_EQ(HitsOf(And(first, Postings(EncodedPosting(2, {1})), 0)), Hits{});
}

TEST_F(QueryAndTest, UnknownOperandIsMinus1AndSilent) {
  const int known = At({1});
  const auto combine = [&] {
    EXPECT_EQ(And(known, 99, 0), -1);
    EXPECT_EQ(And(-1, known, 0), -1);
    EXPECT_EQ(And(0, 99, 1), -1);
  };
  EXPECT_EQ(StandardErrorOf(combine), "");
}

TEST_F(QueryAndTest, NeighboursMatchInEitherOrder) {
  EXPECT_EQ(Both({7}, {8}, 1), (Hits{{1, 402, {8}}}));
  EXPECT_EQ(Both({8}, {7}, 1), (Hits{{1, 402, {7}}}));
}

TEST_F(QueryAndTest, WordsFurtherApartThanTheDistanceDoNotMatch) {
  EXPECT_EQ(Both({7}, {10}, 1), Hits{});
  EXPECT_EQ(Both({7}, {9}, 1), Hits{});
  EXPECT_EQ(Both({9}, {7}, 1), Hits{});
}

TEST_F(QueryAndTest, DistanceReachesExactlyThatFar) {
  for (unsigned distance : {2U, 19U, 20U, 21U, 500U}) {
    const int k = static_cast<int>(distance);
    EXPECT_EQ(Both({1000}, {1000 + distance}, k).size(), 1U) << distance;
    EXPECT_EQ(Both({1000}, {1000 + distance + 1}, k).size(), 0U) << distance;
    EXPECT_EQ(Both({1000}, {1000 - distance}, k).size(), 1U) << distance;
    EXPECT_EQ(Both({1000}, {1000 - distance - 1}, k).size(), 0U) << distance;
  }
}

TEST_F(QueryAndTest, WithADistanceOnePlaceDoesNotMatchItself) {
  EXPECT_EQ(Both({7}, {7}, 1), Hits{});
  EXPECT_EQ(Both({7}, {7}, INT_MAX), Hits{});
}

TEST_F(QueryAndTest, WithoutADistanceOnePlaceMatchesItself) {
  EXPECT_EQ(Both({7}, {7}, 0), (Hits{{1, 2 + 401, {7}}}));
}

TEST_F(QueryAndTest, LargestDistanceReachesEverywhere) {
  EXPECT_EQ(Both({1}, {65535}, INT_MAX), (Hits{{1, 2, {65535}}}));
  EXPECT_EQ(Both({65535}, {1}, 65534), (Hits{{1, 2, {1}}}));
  EXPECT_EQ(Both({65535}, {1}, 65533), Hits{});
}

TEST_F(QueryAndTest, NegativeDistanceLetsNoKnownPlacesPass) {
  for (int distance : {-1, -20, INT_MIN + 1, INT_MIN}) {
    EXPECT_EQ(Both({7, 9}, {7, 8, 500}, distance), Hits{}) << distance;
  }
}

TEST_F(QueryAndTest, NegativeDistanceLetsUnknownPlacesPass) {
  EXPECT_EQ(Both({7, 9}, {0}, -1), (Hits{{1, 3, {7, 9}}}));
  EXPECT_EQ(Both({0}, {7, 9}, INT_MIN), (Hits{{1, 3, {7, 9}}}));
}

TEST_F(QueryAndTest, PairsUpTo20PlacesApartEarnABonus) {
  const auto score = [&](unsigned first, unsigned second) {
    return Both({first}, {second}, 0).at(0).score - 2;
  };
  EXPECT_EQ(score(100, 100), 401U);
  EXPECT_EQ(score(100, 101), 400U);
  EXPECT_EQ(score(100, 90), 301U);
  EXPECT_EQ(score(100, 119), 40U);
  EXPECT_EQ(score(100, 120), 1U);
  EXPECT_EQ(score(100, 80), 1U);
  EXPECT_EQ(score(100, 121), 0U);
  EXPECT_EQ(score(100, 79), 0U);
}

TEST_F(QueryAndTest, BonusDoesNotDependOnTheDistance) {
  EXPECT_EQ(Both({100}, {110}, 10), (Hits{{1, 2 + 301, {110}}}));
  EXPECT_EQ(Both({100}, {110}, 5000), (Hits{{1, 2 + 301, {110}}}));
  EXPECT_EQ(Both({100}, {130}, 30), (Hits{{1, 2, {130}}}));
}

TEST_F(QueryAndTest, WordsFarApartMatchOnlyWithoutADistance) {
  EXPECT_EQ(Both({100}, {130}, 5), Hits{});
  EXPECT_EQ(Both({100}, {130}, 0), (Hits{{1, 2, {130}}}));
}

TEST_F(QueryAndTest, EveryClosePairEarnsItsBonus) {
  EXPECT_EQ(Both({10, 11}, {12}, 0), (Hits{{1, 3 + 397 + 400, {12}}}));
  EXPECT_EQ(Both({10}, {12, 12}, 0), (Hits{{1, 3 + 397 + 397, {12}}}));
}

TEST_F(QueryAndTest, OnlyPairsWithinTheDistanceEarnABonus) {
  EXPECT_EQ(Both({10}, {10, 12, 13}, 2), (Hits{{1, 4 + 397, {12}}}));
}

TEST_F(QueryAndTest, PositionsAreDistinctAndAscending) {
  EXPECT_EQ(Both({100, 400}, {405, 405, 103, 99}, 5).at(0).positions, (Numbers{99, 103, 405}));
}

TEST_F(QueryAndTest, PositionsAreThoseOfTheSecondOperand) {
  EXPECT_EQ(Both({100, 200}, {300, 50}, 0), (Hits{{1, 4, {50, 300}}}));
}

TEST_F(QueryAndTest, SetWithItselfEarnsForEachPair) {
  const int id = At({10, 12, 100});
  EXPECT_EQ(HitsOf(And(id, id, 0)), (Hits{{1, 6 + 3 * 401 + 2 * 397, {10, 12, 100}}}));
  EXPECT_EQ(HitsOf(And(id, id, 2)), (Hits{{1, 6 + 2 * 397, {10, 12}}}));
}

TEST_F(QueryAndTest, ChainMeasuresFromTheWordMatchedLast) {
  const int first = At({1}), second = At({2});
  const int both = And(first, second, 1);
  EXPECT_EQ(HitsOf(And(both, At({3}), 1)), (Hits{{1, 402 + 1 + 400, {3}}}));
  EXPECT_EQ(HitsOf(And(And(second, first, 1), At({3}), 1)), Hits{});
}

TEST_F(QueryAndTest, WithoutPositionsEveryCommonDocumentStays) {
  DropPositions();
  const int first = Postings(Units({1, 2, 3}));
  const int second = Postings(Units({3, 2, 4}));
  for (int distance : {0, 1, 20, -1, INT_MIN}) {
    EXPECT_EQ(HitsOf(And(first, second, distance)), (Hits{{2, 2, {0}}, {3, 2, {0}}}));
  }
}

TEST_F(QueryAndTest, UnknownPlaceOfTheSecondKeepsThePlacesOfTheFirst) {
  EXPECT_EQ(Both({5, 9}, {0}, 1), (Hits{{1, 3, {5, 9}}}));
  EXPECT_EQ(Both({5}, {0, 7}, 0), (Hits{{1, 3 + 397, {5, 7}}}));
}

TEST_F(QueryAndTest, UnknownPlaceOfTheFirstKeepsThePlacesOfTheSecond) {
  EXPECT_EQ(Both({0}, {5, 9}, 1), (Hits{{1, 3, {5, 9}}}));
  EXPECT_EQ(Both({0, 7}, {5, 40}, 1), (Hits{{1, 4, {5, 40}}}));
}

TEST_F(QueryAndTest, UnknownPlacesOfBothKeepOneUnknownPlace) {
  EXPECT_EQ(Both({0}, {0}, 1), (Hits{{1, 2, {0}}}));
  EXPECT_EQ(Both({0, 3}, {0, 9}, 1), (Hits{{1, 4, {0, 3, 9}}}));
}

TEST_F(QueryAndTest, DocumentWithoutPositionsDrops) {
  EXPECT_EQ(Both({}, {1, 2}, 0), Hits{});
  EXPECT_EQ(Both({1}, {}, 0), Hits{});
}

TEST_F(QueryAndTest, EachDocumentIsMatchedByItself) {
  const int first =
      Postings(EncodedPosting(1, {10}) + EncodedPosting(2, {10}) + EncodedPosting(3, {500}));
  const int second =
      Postings(EncodedPosting(1, {11}) + EncodedPosting(2, {500}) + EncodedPosting(3, {500, 11}));
  EXPECT_EQ(HitsOf(And(first, second, 0)),
            (Hits{{1, 402, {11}}, {2, 2, {500}}, {3, 3 + 401, {11, 500}}}));
}

// 163 pairs in one place earn 163 x 401 = 65363; the rest is the number of positions.
TEST_F(QueryAndTest, ScoreReaches65535AndNoFurther) {
  const auto score = [&](unsigned far_away) {
    Numbers second = From(1000, 1000 + far_away - 1);
    second.push_back(5);
    return Both(Numbers(163, 5), second, 0).at(0).score;
  };
  EXPECT_EQ(score(7), 65534U);
  EXPECT_EQ(score(8), 65535U);
  EXPECT_EQ(score(9), 65535U);
}

TEST_F(QueryAndTest, ScoreAbove65535IsCut) {
  EXPECT_EQ(Both(Numbers(13, 5), Numbers(12, 5), 0).at(0).score, 13U * 12 * 401 + 25);
  EXPECT_EQ(Both(Numbers(14, 5), Numbers(12, 5), 0).at(0).score, 65535U);
}

// 3998 x 2679 pairs earn 401 each, which is 146 more than 2^32.
TEST_F(QueryAndTest, ScoreIsCountedIn32BitsBeforeItIsCut) {
  EXPECT_EQ(Both(Numbers(3998, 5), Numbers(2679, 5), 0), (Hits{{1, 146 + 3998 + 2679, {5}}}));
}

TEST_F(QueryAndTest, SumOfScoresIsCutWithoutAnyBonusToo) {
  const int first = At(Numbers(40000, 5));
  EXPECT_EQ(HitsOf(And(first, At({0}), 0)).at(0).score, 40001U);
  const int cut = And(first, At({5}), 0);
  EXPECT_EQ(HitsOf(And(cut, At({1000}), 0)), (Hits{{1, 65535, {1000}}}));
}

TEST_F(QueryAndTest, AtMost65535PositionsStay) {
  const Hits hits = Both(From(0, 65534), {0, 65535}, 0);
  ASSERT_EQ(hits.size(), 1U);
  EXPECT_EQ(hits[0].positions, From(0, 65534));
}

}  // namespace
}  // namespace kestan_tests
