// SPDX-License-Identifier: GPL-3.0-or-later
// Words and texts of unusual lengths, through their whole life in an index.
#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class LongTextTest : public QueryTest {};

class WordOfLengthTest : public QueryTest, public testing::WithParamInterface<std::size_t> {
 protected:
  const std::string word_ = std::string(GetParam(), 'w');
};

INSTANTIATE_TEST_SUITE_P(Bytes, WordOfLengthTest,
                         testing::Values(1, 2, 64, 65, 127, 128, 255, 256, 511, 512, 4095, 4096,
                                         65535, 65536, 70000));

TEST_P(WordOfLengthTest, IsIndexedFoundAndListedWhole) {
  EXPECT_EQ(engine_.AddDocumentWords("one", (word_ + " cat " + word_).c_str()),
            "cat\n" + word_ + "\n");
  engine_.AddDocumentWords("two", (word_ + "x").c_str());
  EXPECT_EQ(HitsOf(Word(word_.c_str())), (Hits{{1, 2, {1, 3}}}));
  EXPECT_EQ(HitsOf(Word((word_ + "x").c_str())), (Hits{{2, 1, {1}}}));
  EXPECT_EQ(Listing(Word(word_.c_str())), "100 one\n");
  const std::string common = "\n" + std::string(engine_.CommonWords(1, -1));
  EXPECT_NE(common.find("\n" + word_ + "\n"), std::string::npos);
  EXPECT_EQ(Stored().at(word_), EncodedPosting(1, {1, 3}));
}

TEST_P(WordOfLengthTest, IsFoldedWhole) {
  const std::string capitals(GetParam(), 'W');
  EXPECT_EQ(engine_.AddDocumentWords("one", capitals.c_str()), capitals + "\n" + word_ + "\n");
  EXPECT_EQ(HitsOf(Word(word_.c_str())), (Hits{{1, 1, {1}}}));
}

TEST_P(WordOfLengthTest, LosesRemovedDocumentsInAShrinkUnlessItIsOneByte) {
  engine_.AddDocumentWords("one", word_.c_str());
  engine_.AddDocumentWords("two", word_.c_str());
  engine_.RemoveDocumentWords("one");
  engine_.ShrinkIndex();
  const Records stored = Stored();
  EXPECT_EQ(stored.at(word_),
            (GetParam() == 1 ? EncodedPosting(1, {1}) : "") + EncodedPosting(2, {1}));
}

TEST_P(WordOfLengthTest, LosesItsPositionsWithOptionFlag1) {
  engine_.AddDocumentWords("one", word_.c_str());
  engine_.SetOptionFlag(1);
  engine_.AddDocumentWords("two", word_.c_str());
  EXPECT_EQ(Stored().at(word_), Units({1, 2}));
}

// The second byte marks system records, but only in keys of more than two bytes.
TEST_F(LongTextTest, AWordOfTwoBytesThatEndsInADashIsAWordThatShrinkingPassesOver) {
  EXPECT_STREQ(engine_.AddDocumentWords("one", "a- -a --"), "--\n-a\na-\n");
  for (const char* word : {"a-", "-a", "--"}) EXPECT_EQ(Listing(Word(word)), "100 one\n") << word;
  const std::string common = engine_.CommonWords(1, 1);
  for (const char* word : {"a-\n", "-a\n", "--\n"}) {
    EXPECT_NE(common.find(word), std::string::npos) << word;
  }
  engine_.RemoveDocumentWords("one");
  engine_.ShrinkIndex();
  const Records stored = Stored();
  EXPECT_EQ(stored.at("a-"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("-a"), "");
  EXPECT_EQ(stored.at("--"), EncodedPosting(1, {3}));
}

// The 65536th word stands at place 1 again, so that the 100000th stands at 34465.
TEST_F(LongTextTest, PlacesOf100000WordsGoRoundOnce) {
  std::string text = "first second ";
  text += Times(65533, "x ") + "wrapped " + Times(34463, "x ") + "last";
  engine_.AddDocumentWords("one", text.c_str());
  EXPECT_EQ(HitsOf(Word("wrapped")), (Hits{{1, 1, {1}}}));
  EXPECT_EQ(HitsOf(Word("last")), (Hits{{1, 1, {34465}}}));
  EXPECT_EQ(HitsOf(Word("x")).at(0).score, 65535U);
  EXPECT_EQ(HitsOf(And(Word("first"), Word("wrapped"), 1)), Hits{});  // the same place
  EXPECT_EQ(HitsOf(And(Word("second"), Word("wrapped"), 1)), (Hits{{1, 402, {1}}}));
  EXPECT_EQ(HitsOf(And(Word("first"), Word("last"), 34463)), Hits{});
  EXPECT_EQ(HitsOf(And(Word("first"), Word("last"), 34464)), (Hits{{1, 2, {34465}}}));
}

TEST_F(LongTextTest, AWordThatOccurs70000TimesIsCountedToTheLimit) {
  engine_.AddDocumentWords("many", (Times(70000, "x ") + "end").c_str());
  engine_.AddDocumentWords("one", "x");
  const Hits hits = HitsOf(Word("x"));
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_EQ(hits[0], (Hit{1, 65535, From(1, 65535)}));
  EXPECT_EQ(hits[1], (Hit{2, 1, {1}}));
  EXPECT_EQ(HitsOf(Word("end")), (Hits{{1, 1, {70001 - 65535}}}));
  EXPECT_EQ(Listing(Word("x")), "100 many\n0 one\n");
}

TEST_F(LongTextTest, OccurrencesOnBothSidesOfTheLimitScoreAsMuchAsIsCounted) {
  for (const unsigned count : {65534U, 65535U, 65536U}) {
    engine_.AddDocumentWords(std::to_string(count).c_str(), Times(count, "xx ").c_str());
  }
  const Hits hits = HitsOf(Word("xx"));
  ASSERT_EQ(hits.size(), 3U);
  EXPECT_EQ(hits[0].score, 65534U);
  EXPECT_EQ(hits[1].score, 65535U);
  EXPECT_EQ(hits[2].score, 65535U);
  EXPECT_EQ(Listing(Word("xx")), "100 65534\n100 65535\n100 65536\n");
}

}  // namespace
}  // namespace kestan_tests
