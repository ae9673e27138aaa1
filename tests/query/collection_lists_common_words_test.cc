// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::CommonWords of kestan/query/collection_lists.cc.
#include <cmath>
#include <limits>
#include <set>
#include <sstream>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class CommonWordsTest : public IndexTest {
 protected:
  // The words of a listing, in order of their bytes.
  static std::string Sorted(const char* lines) {
    std::istringstream in(lines);
    std::set<std::string> words;
    for (std::string word; std::getline(in, word);) EXPECT_TRUE(words.insert(word).second) << word;
    std::string text;
    for (const std::string& word : words) text += word + " ";
    return text;
  }

  // Plants an index of `documents` documents with the words "n0", "n1" ... "n9" and "nX", which
  // are in 0, 1 ... 9 and 10 documents.
  void PlantCounts(unsigned documents) {
    Records records = {{"g-code", Units({documents})}, {"n0", ""}, {"g-avail", ""}};
    std::string postings;
    for (unsigned count = 1; count <= 10; ++count) {
      postings += EncodedPosting(count, {1, 2});
      records[std::string("n") + "0123456789X"[count]] = postings;
    }
    PlantAndReopen(records);
  }

  // Lists the words of such an index of 10 documents that lie between `low` and `high`.
  std::string Between(double low, double high) {
    PlantCounts(10);
    return Sorted(engine_.CommonWords(low, high));
  }
};

const char* const kAll = "n0 n1 n2 n3 n4 n5 n6 n7 n8 n9 nX ";
const char* const kFound = "n1 n2 n3 n4 n5 n6 n7 n8 n9 nX ";

TEST_F(CommonWordsTest, SharesOfTheCollectionAreRounded) {
  EXPECT_EQ(Between(0.25, 0.5), "n3 n4 n5 ");
  EXPECT_EQ(Between(0.24, 0.54), "n2 n3 n4 n5 ");
  EXPECT_EQ(Between(0.35, 0.449), "n4 ");
  EXPECT_EQ(Between(0.0, 0.04), "n0 ");
  EXPECT_EQ(Between(0.05, 0.05), "n1 ");
}

TEST_F(CommonWordsTest, NumbersFrom1AreCounts) {
  EXPECT_EQ(Between(2, 3), "n2 n3 ");
  EXPECT_EQ(Between(10, 10), "nX ");
  EXPECT_EQ(Between(1, 1), "n1 ");
}

TEST_F(CommonWordsTest, LowOf1IsACountAndJustBelowIsAShare) {
  EXPECT_EQ(Between(1.0, -1), kFound);
  EXPECT_EQ(Between(0.999, -1), "nX ");
}

TEST_F(CommonWordsTest, HighOf1IsACountAndJustBelowIsAShare) {
  EXPECT_EQ(Between(0, 1.0), "n0 n1 ");
  EXPECT_EQ(Between(0, 0.999), kAll);
}

TEST_F(CommonWordsTest, CountsJustBelowAWholeNumberAreThatNumber) {
  EXPECT_EQ(Between(2.9999, 3), "n3 ");
  EXPECT_EQ(Between(2.99, 3), "n2 n3 ");
  EXPECT_EQ(Between(4, 4.9999), "n4 n5 ");
  EXPECT_EQ(Between(4, 4.99), "n4 ");
}

TEST_F(CommonWordsTest, NegativeHighIsNoLimit) {
  EXPECT_EQ(Between(0.2, -1), "n2 n3 n4 n5 n6 n7 n8 n9 nX ");
  EXPECT_EQ(Between(0, -0.001), kAll);
  EXPECT_EQ(Between(9, -1e300), "n9 nX ");
}

TEST_F(CommonWordsTest, NoLimitIsTheNumberOfDocuments) {
  PlantCounts(4);
  EXPECT_EQ(Sorted(engine_.CommonWords(0, -1)), "n0 n1 n2 n3 n4 ");
}

TEST_F(CommonWordsTest, NegativeLowIsACountThatWraps) {
  EXPECT_EQ(Between(-1, -1), kAll);
  EXPECT_EQ(Between(-1.0009, -1), kAll);
  EXPECT_EQ(Between(-1.0011, -1), "");
  EXPECT_EQ(Between(-2, 1), "");
}

TEST_F(CommonWordsTest, MinusZeroIsZero) {
  EXPECT_EQ(Between(-0.0, -1), kAll);
  EXPECT_EQ(Between(0, -0.0), "n0 ");
}

TEST_F(CommonWordsTest, BoundsThatAreNoNumbers) {
  EXPECT_EQ(Between(kNan, -1), kAll);
  EXPECT_EQ(Between(9, kNan), "n9 nX ");
  EXPECT_EQ(Between(kNan, kNan), kAll);
}

TEST_F(CommonWordsTest, BoundsThatFitNo64BitsAre0) {
  for (double bound : {kInfinity, 1e300, 9.3e18}) {
    EXPECT_EQ(Between(bound, 2), "n0 n1 n2 ") << bound;
    EXPECT_EQ(Between(0, bound), "n0 ") << bound;
    EXPECT_EQ(Between(1, bound), "") << bound;
    EXPECT_EQ(Between(-bound, 2), "n0 n1 n2 ") << bound;
    EXPECT_EQ(Between(9, -bound), "n9 nX ") << bound;
  }
}

TEST_F(CommonWordsTest, BoundsKeepTheirLow32Bits) {
  const double two_to_32 = 4294967296.0;
  EXPECT_EQ(Between(0, two_to_32 + 2), "n0 n1 n2 ");
  EXPECT_EQ(Between(two_to_32 + 9, -1), "n9 nX ");
  EXPECT_EQ(Between(9, two_to_32 - 1), "n9 nX ");
  EXPECT_EQ(Between(two_to_32 - 1, -1), "");
  EXPECT_EQ(Between(-two_to_32, 2), "n1 n2 ");
}

TEST_F(CommonWordsTest, LargestBoundOf64BitsKeepsItsLow32Bits) {
  const double largest = std::nextafter(9223372036854775808.0, 0);  // 2^63 - 1024
  EXPECT_EQ(Between(9, largest), "n9 nX ");
  EXPECT_EQ(Between(largest, -1), "");
}

TEST_F(CommonWordsTest, SharesAreOfAllDocumentsThatAreNotReusable) {
  PlantCounts(20);
  PlantAndReopen({{"g-avail", Codes(From(11, 20))}, {"g-deleted", Units({1, 2})}});
  EXPECT_EQ(Sorted(engine_.CommonWords(0.25, 0.5)), "n3 n4 n5 ");
  EXPECT_EQ(Sorted(engine_.CommonWords(0.5, -1)), "n5 n6 n7 n8 n9 nX ");
}

TEST_F(CommonWordsTest, MoreReusableCodesThanDocumentsWrapTheirNumber) {
  PlantCounts(1);
  PlantAndReopen({{"g-avail", Units({1, 2})}});
  EXPECT_EQ(Sorted(engine_.CommonWords(0, 0.5)), kAll);
  EXPECT_EQ(Sorted(engine_.CommonWords(0, -1)), kAll);
  EXPECT_EQ(Sorted(engine_.CommonWords(0.5, -1)), "");
}

TEST_F(CommonWordsTest, RemovedDocumentsCountUntilTheIndexIsShrunk) {
  for (const char* name : {"a", "b", "c"}) engine_.AddDocumentWords(name, "cat");
  engine_.RemoveDocumentWords("a");
  EXPECT_EQ(Sorted(engine_.CommonWords(3, -1)), "cat ");
  engine_.ShrinkIndex();
  EXPECT_EQ(Sorted(engine_.CommonWords(3, -1)), "");
  EXPECT_EQ(Sorted(engine_.CommonWords(2, 2)), "cat ");
}

TEST_F(CommonWordsTest, CountsBareCodesWherePositionsAreNotKept) {
  PlantAndReopen({{"g-opts", kNoPositions},
                  {"g-code", Units({9})},
                  {"four", Units({1, 2, 3, 4})},
                  {"odd", Units({1, 2}) + "x"}});
  EXPECT_EQ(Sorted(engine_.CommonWords(4, 4)), "four ");
  EXPECT_EQ(Sorted(engine_.CommonWords(2, 2)), "odd ");
}

TEST_F(CommonWordsTest, ShortWordsTakePartAndSystemRecordsDoNot) {
  Records records = {{"g-code", Units({9})}};
  for (const char* key : {"a", "-", "ab", "x-", "--", "abc", "x-y", "---", "xy-"}) {
    records[key] = EncodedPosting(1, {1});
  }
  PlantAndReopen(records);
  EXPECT_EQ(Sorted(engine_.CommonWords(1, 1)), "- -- a ab abc x- xy- ");
}

TEST_F(CommonWordsTest, DamagedRecordsAreCountedToTheirEnd) {
  PlantAndReopen(
      {{"g-code", Units({9})},
       {"far", Units({1, 65535, 1, 1})},
       {"lone", EncodedPosting(1, {1}) + Units({2})},
       {"byte", "x"},
       {"cut", EncodedPosting(1, {1}) + EncodedPosting(2, {1}) + Units({3, 9, 1}) + "x"}});
  EXPECT_EQ(Sorted(engine_.CommonWords(0, 0)), "byte ");
  EXPECT_EQ(Sorted(engine_.CommonWords(1, 1)), "far ");
  EXPECT_EQ(Sorted(engine_.CommonWords(2, 2)), "lone ");
  EXPECT_EQ(Sorted(engine_.CommonWords(3, 3)), "cut ");
}

TEST_F(CommonWordsTest, ShortCounterIsPaddedWithZeros) {
  PlantCounts(1);
  PlantAndReopen({{"g-code", "\x04"}});
  EXPECT_EQ(Sorted(engine_.CommonWords(0.5, -1)), "n2 n3 n4 ");
}

TEST_F(CommonWordsTest, IndexWithoutCounterIsAnEmptyTextOutsideTheBuffer) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1})}});
  const auto list = [&] { EXPECT_STREQ(engine_.CommonWords(0, -1), ""); };
  EXPECT_EQ(StandardErrorOf(list), "");
  EXPECT_EQ(Kestan::WordBuf, nullptr);
  EXPECT_EQ(Kestan::WBSize, 0U);
}

TEST_F(CommonWordsTest, WithoutAnIndexIsAnEmptyText) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_STREQ(engine_.CommonWords(0, -1), ""); }),
            "Kestan: Call to database::get without an open database\n");
  EXPECT_EQ(Kestan::WordBuf, nullptr);
}

TEST_F(CommonWordsTest, BoundsThatNoWordMeetsAreAnEmptyTextInTheBuffer) {
  PlantCounts(10);
  const char* const lines = engine_.CommonWords(11, 12);
  EXPECT_STREQ(lines, "");
  EXPECT_EQ(lines, Kestan::WordBuf);
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(CommonWordsTest, SeesPostingsThatAreNotFlushed) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  EXPECT_EQ(Sorted(engine_.CommonWords(2, 2)), "cat ");
}

}  // namespace
}  // namespace kestan_tests
