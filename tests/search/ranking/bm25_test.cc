// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/bm25.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kestan::search {
namespace {

TEST(Bm25Test, IdfFallsWithTheDocumentFrequency) {
  EXPECT_DOUBLE_EQ(Idf(1, 10), std::log(1 + 9.5 / 1.5));
  EXPECT_DOUBLE_EQ(Idf(10, 10), std::log(1 + 0.5 / 10.5));
  EXPECT_GT(Idf(1, 10), Idf(2, 10));
}

TEST(Bm25Test, IdfIsPositiveEvenOfMoreDocumentsThanThereAre) {
  EXPECT_DOUBLE_EQ(Idf(11, 10), std::log(1 + 0.5 / 11.5));
  EXPECT_GT(Idf(11, 10), 0);
}

TEST(Bm25Test, IdfsCountMoreInLongQuestions) {
  EXPECT_EQ(IdfExponent(1), 1);
  EXPECT_EQ(IdfExponent(20), 1);
  EXPECT_GT(IdfExponent(21), 1);
  EXPECT_DOUBLE_EQ(IdfExponent(40), 1.25);
  EXPECT_DOUBLE_EQ(IdfExponent(80), 1.5);
  EXPECT_EQ(IdfExponent(1000), 1.5);
}

TEST(Bm25Test, ScoreIsThatOfTheFormula) {
  EXPECT_DOUBLE_EQ(Bm25Score(2, 3, 1.5), 2 * 3 * 2.8 / (3 + 1.8 * (0.25 + 0.75 * 1.5)));
  EXPECT_DOUBLE_EQ(Bm25Score(2, 3, 1), 2 * 3 * 2.8 / (3 + 1.8));
}

TEST(Bm25Test, FurtherOccurrencesCountLess) {
  EXPECT_GT(Bm25Score(1, 2, 1) - Bm25Score(1, 1, 1), Bm25Score(1, 3, 1) - Bm25Score(1, 2, 1));
  EXPECT_LT(Bm25Score(1, 1000000, 1), 2.8);
}

TEST(Bm25Test, LongDocumentsScoreLess) { EXPECT_GT(Bm25Score(1, 1, 0.5), Bm25Score(1, 1, 2)); }

TEST(Bm25Test, WithoutBTheLengthDoesNotCount) {
  EXPECT_DOUBLE_EQ(Bm25Score(1, 2, 0.1, {1.6, 0}), Bm25Score(1, 2, 10, {1.6, 0}));
}

TEST(Bm25Test, WithoutK1OccurrencesDoNotCount) {
  EXPECT_DOUBLE_EQ(Bm25Score(2, 1, 1, {0, 0.75}), 2);
  EXPECT_DOUBLE_EQ(Bm25Score(2, 9, 3, {0, 0.75}), 2);
}

}  // namespace
}  // namespace kestan::search
