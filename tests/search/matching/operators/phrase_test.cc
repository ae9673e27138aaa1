// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <vector>

#include "tests/search/matching/operators/occurrences.h"

namespace kestan::search {
namespace {

using kestan_tests::At;
using kestan_tests::Places;
using kestan_tests::PlacesIn;
using List = std::vector<Position>;

List PhraseIn(const std::vector<List>& words) {
  std::vector<Found> operands;
  for (const List& word : words) operands.push_back(At({{1, word}}));
  const Places found = PlacesIn(Phrase(operands, Need::kPositions));
  return found.empty() ? List{} : found.at(1);
}

TEST(PhraseOperatorTest, WordsStandInTheirOrder) {
  EXPECT_EQ(PhraseIn({{4}, {5}}), List{5});
  EXPECT_EQ(PhraseIn({{5}, {4}}), List{});
  EXPECT_EQ(PhraseIn({{4}, {6}}), List{});
  EXPECT_EQ(PhraseIn({{4}, {4}}), List{});
}

TEST(PhraseOperatorTest, EachWordFollowsTheOneBefore) {
  EXPECT_EQ(PhraseIn({{1, 10, 20}, {2, 11, 22}, {12, 24}}), List{12});
}

TEST(PhraseOperatorTest, PositionsAreThoseOfTheLastWord) {
  EXPECT_EQ(PhraseIn({{1, 5, 9}, {2, 7, 10}}), (List{2, 10}));
}

TEST(PhraseOperatorTest, SameWordMayComeTwice) {
  EXPECT_EQ(PhraseIn({{1, 2, 3, 9}, {1, 2, 3, 9}}), (List{2, 3}));
}

TEST(PhraseOperatorTest, RepeatedPositionsCountEach) {
  EXPECT_EQ(PhraseIn({{4, 4}, {5, 5, 5}}), (List{5, 5, 5}));
}

TEST(PhraseOperatorTest, NothingComesAfterTheLastPosition) {
  EXPECT_EQ(PhraseIn({{65535}, {1}}), List{});
  EXPECT_EQ(PhraseIn({{65534}, {65535}}), List{65535});
}

TEST(PhraseOperatorTest, DocumentsNeedAllWords) {
  const Occurrences found = Phrase(
      {At({{1, {1}}, {2, {1}}, {3, {1}}}), At({{2, {2}}, {3, {3}}, {4, {2}}})}, Need::kPositions);
  EXPECT_EQ(PlacesIn(found), (Places{{2, {2}}}));
}

}  // namespace
}  // namespace kestan::search
