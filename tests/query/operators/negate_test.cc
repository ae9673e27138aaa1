// SPDX-License-Identifier: GPL-3.0-or-later
// NOT through Kestan::QueryNegate.
#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class QueryNegateTest : public QueryTest {
 protected:
  // Hits of score 0 at an unknown place.
  static Hits Zeros(const Numbers& codes) {
    Hits hits;
    for (unsigned code : codes) hits.push_back({code, 0, {0}});
    return hits;
  }
};

TEST_F(QueryNegateTest, FindsTheOtherDocuments) {
  for (const char* text : {"cat", "dog", "cat", "cow"}) engine_.AddDocumentWords(text, text);
  EXPECT_EQ(HitsOf(Not(Word("dog"))), Zeros({1, 3, 4}));
}

TEST_F(QueryNegateTest, OfEverythingIsAnEmptySet) {
  PlantAndReopen({{"g-code", Units({2})}});
  EXPECT_EQ(HitsOf(Not(Postings(EncodedPosting(1, {1}) + EncodedPosting(2, {1})))), Hits{});
}

TEST_F(QueryNegateTest, OfAnUnknownSetIsEverything) {
  PlantAndReopen({{"g-code", Units({3})}});
  EXPECT_EQ(HitsOf(Not(-1)), Zeros({1, 2, 3}));
  EXPECT_EQ(HitsOf(Not(99)), Zeros({1, 2, 3}));
}

TEST_F(QueryNegateTest, LeavesOutReusableCodes) {
  PlantAndReopen({{"g-code", Units({6})}, {"g-avail", Units({5, 2})}});
  EXPECT_EQ(HitsOf(Not(-1)), Zeros({1, 3, 4, 6}));
  EXPECT_EQ(HitsOf(Not(Postings(EncodedPosting(2, {1}) + EncodedPosting(3, {1})))),
            Zeros({1, 4, 6}));
}

TEST_F(QueryNegateTest, SeesReusableCodesThatAreNotFlushed) {
  PlantAndReopen({{"g-code", Units({3})}, {"g-avail", Units({3, 2})}});
  engine_.AddDocumentWords("one", "");
  EXPECT_EQ(HitsOf(Not(-1)), Zeros({1, 2}));
}

TEST_F(QueryNegateTest, KeepsRemovedDocumentsUntilTheIndexIsShrunk) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "dog");
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(HitsOf(Not(Word("dog"))), Zeros({1}));
  EXPECT_STREQ(engine_.QueryResults(Not(Word("dog"))), "");
  engine_.ShrinkIndex();
  EXPECT_EQ(HitsOf(Not(Word("dog"))), Hits{});
}

TEST_F(QueryNegateTest, IgnoresCodesAboveTheCounter) {
  PlantAndReopen({{"g-code", Units({2})}, {"g-avail", Units({9})}});
  EXPECT_EQ(HitsOf(Not(Postings(EncodedPosting(0, {1}) + EncodedPosting(3, {1}) +
                                EncodedPosting(65535, {1})))),
            Zeros({1, 2}));
}

TEST_F(QueryNegateTest, CountsUpTo65535) {
  PlantAndReopen({{"g-code", Units({65535})}});
  EXPECT_EQ(HitsOf(Not(Postings(EncodedPosting(1, {1})))), Zeros(From(2, 65535)));
}

TEST_F(QueryNegateTest, OfANegationIsWhatWasThereWithoutScores) {
  PlantAndReopen({{"g-code", Units({4})}});
  EXPECT_EQ(HitsOf(Not(Not(Postings(EncodedPosting(2, {1, 2}))))), Zeros({2}));
}

TEST_F(QueryNegateTest, CanBeNarrowedByAWord) {
  PlantAndReopen({{"g-code", Units({4})}});
  const int word = Postings(EncodedPosting(2, {8}) + EncodedPosting(3, {1, 9}));
  const int others = Not(Postings(EncodedPosting(2, {1})));
  EXPECT_EQ(HitsOf(And(word, others, 5)), (Hits{{3, 2, {1, 9}}}));
}

TEST_F(QueryNegateTest, CounterOfZeroIsAnEmptySet) {
  PlantAndReopen({{"g-code", Units({0})}});
  EXPECT_EQ(HitsOf(Not(-1)), Hits{});
}

TEST_F(QueryNegateTest, ShortCounterIsPaddedWithZeros) {
  PlantAndReopen({{"g-code", "\x02"}});
  EXPECT_EQ(HitsOf(Not(-1)), Zeros({1, 2}));
  PlantAndReopen({{"g-code", ""}});
  EXPECT_EQ(HitsOf(Not(-1)), Hits{});
}

TEST_F(QueryNegateTest, OddByteOfTheReusableCodesIsNoCode) {
  PlantAndReopen({{"g-code", Units({3})}, {"g-avail", Units({2}) + "\x01"}});
  EXPECT_EQ(HitsOf(Not(-1)), Zeros({1, 3}));
}

TEST_F(QueryNegateTest, IndexWithoutCounterEndsTheProcess) {
  EXPECT_EXIT(engine_.QueryNegate(-1), testing::ExitedWithCode(1),
              "^Kestan: Could not locate global-code \\(oops!\\)\n$");
}

TEST_F(QueryNegateTest, WithoutAnIndexEndsTheProcess) {
  engine_.CloseIndex();
  EXPECT_EXIT(engine_.QueryNegate(-1), testing::ExitedWithCode(1),
              "^Kestan: Call to database::get without an open database\n"
              "Kestan: Could not locate global-code \\(oops!\\)\n$");
}

}  // namespace
}  // namespace kestan_tests
