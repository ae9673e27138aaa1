// SPDX-License-Identifier: GPL-3.0-or-later
// OR through Kestan::QueryOr.
#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class QueryOrTest : public QueryTest {};

TEST_F(QueryOrTest, UnitesTheDocumentsInOrderOfTheirCodes) {
  const int first = Postings(EncodedPosting(2, {1, 5}) + EncodedPosting(9, {2}));
  const int second =
      Postings(EncodedPosting(1, {3}) + EncodedPosting(4, {4, 4}) + EncodedPosting(10, {}));
  const Hits expected = {{1, 1, {3}}, {2, 2, {1, 5}}, {4, 2, {4, 4}}, {9, 1, {2}}, {10, 0, {}}};
  EXPECT_EQ(HitsOf(Or(first, second)), expected);
  EXPECT_EQ(HitsOf(Or(second, first)), expected);
}

TEST_F(QueryOrTest, DocumentOfBothHasThePlacesOfTheSecondFirst) {
  const int first = At({5, 1});
  const int second = At({9, 1, 3});
  EXPECT_EQ(HitsOf(Or(first, second)), (Hits{{1, 5, {9, 1, 3, 5, 1}}}));
  EXPECT_EQ(HitsOf(Or(second, first)), (Hits{{1, 5, {5, 1, 9, 1, 3}}}));
}

TEST_F(QueryOrTest, SetWithItselfHasEverythingTwice) {
  const int id = At({4, 7});
  EXPECT_EQ(HitsOf(Or(id, id)), (Hits{{1, 4, {4, 7, 4, 7}}}));
}

TEST_F(QueryOrTest, WithoutPositionsUnknownPlacesAddUp) {
  DropPositions();
  const int first = Postings(Units({1, 2}));
  EXPECT_EQ(HitsOf(Or(first, Postings(Units({2})))), (Hits{{1, 1, {0}}, {2, 2, {0, 0}}}));
}

TEST_F(QueryOrTest, ScoreReaches65535AndNoFurther) {
  const int most = At(Numbers(40000, 5));
  EXPECT_EQ(HitsOf(Or(most, At(Numbers(25534, 6)))).at(0).score, 65534U);
  EXPECT_EQ(HitsOf(Or(most, At(Numbers(25535, 6)))).at(0).score, 65535U);
  EXPECT_EQ(HitsOf(Or(most, At(Numbers(25536, 6)))).at(0).score, 65535U);
}

TEST_F(QueryOrTest, NumberOfPositionsReaches65535) {
  const Hits hits = HitsOf(Or(At(Numbers(40000, 5)), At(Numbers(25535, 6))));
  EXPECT_EQ(hits.at(0).positions.size(), 65535U);
  EXPECT_EQ(hits.at(0).positions.front(), 6U);
  EXPECT_EQ(hits.at(0).positions.back(), 5U);
}

TEST_F(QueryOrTest, NumberOfPositionsWrapsIn16Bits) {
  const int first = At(Numbers(40000, 5));
  EXPECT_EQ(HitsOf(Or(first, At(Numbers(25536, 6)))), (Hits{{1, 65535, {}}}));
  EXPECT_EQ(HitsOf(Or(first, At(Numbers(25540, 6)))), (Hits{{1, 65535, Numbers(4, 6)}}));
}

// Only the places that the wrapped number still counts can be reached.
TEST_F(QueryOrTest, WrappedSetCanBeCombinedAndListed) {
  PlantAndReopen({{NameKey(1), "one"}});
  const int many = At(Numbers(65535, 5));
  const int wrapped = Or(many, At({9, 7}));
  EXPECT_EQ(HitsOf(wrapped), (Hits{{1, 65535, {9}}}));
  EXPECT_EQ(HitsOf(And(wrapped, At({8}), 1)), (Hits{{1, 65535, {8}}}));
  EXPECT_EQ(HitsOf(And(wrapped, At({6}), 1)), Hits{});
  EXPECT_STREQ(engine_.QueryResults(wrapped), "100 one\n");
}

TEST_F(QueryOrTest, UnknownOperandCountsAsEmpty) {
  const int known = Postings(EncodedPosting(1, {3, 2}) + EncodedPosting(2, {1}));
  EXPECT_EQ(HitsOf(Or(known, 99)), HitsOf(known));
  EXPECT_EQ(HitsOf(Or(-1, known)), HitsOf(known));
}

TEST_F(QueryOrTest, TwoUnknownOperandsAreMinus1AndSilent) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Or(99, -1), -1); }), "");
}

TEST_F(QueryOrTest, AnswersWithANewSet) {
  const int known = At({3});
  const int copy = Or(known, -1);
  EXPECT_NE(copy, known);
  engine_.FreeQueryResult(known);
  EXPECT_EQ(HitsOf(copy), (Hits{{1, 1, {3}}}));
}

}  // namespace
}  // namespace kestan_tests
