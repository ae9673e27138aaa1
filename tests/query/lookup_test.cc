// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::QueryWord of kestan/query/lookup.cc.
#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class QueryWordTest : public QueryTest {
 protected:
  // The set of a word whose posting record is `record`.
  Hits Of(const std::string& record) { return HitsOf(Postings(record)); }
};

TEST_F(QueryWordTest, FindsTheDocumentsWithTheirPositions) {
  engine_.AddDocumentWords("one", "cat dog cat");
  engine_.AddDocumentWords("two", "cat");
  engine_.AddDocumentWords("three", "dog the cat");
  EXPECT_EQ(HitsOf(Word("cat")), (Hits{{1, 2, {1, 3}}, {2, 1, {1}}, {3, 1, {3}}}));
}

TEST_F(QueryWordTest, PutsDocumentsInOrderOfTheirCodes) {
  EXPECT_EQ(Of(EncodedPosting(9, {1}) + EncodedPosting(65535, {2, 3}) + EncodedPosting(4, {}) +
               EncodedPosting(5, {7})),
            (Hits{{4, 0, {}}, {5, 1, {7}}, {9, 1, {1}}, {65535, 2, {2, 3}}}));
}

TEST_F(QueryWordTest, PositionsKeepTheirStoredOrder) {
  EXPECT_EQ(Of(EncodedPosting(1, {5, 3, 3, 0, 9})), (Hits{{1, 5, {5, 3, 3, 0, 9}}}));
}

TEST_F(QueryWordTest, WithoutPositionsEachDocumentScores1AtAnUnknownPlace) {
  DropPositions();
  EXPECT_EQ(Of(Units({7, 2, 9})), (Hits{{2, 1, {0}}, {7, 1, {0}}, {9, 1, {0}}}));
}

TEST_F(QueryWordTest, OtherOptionFlagsKeepPositions) {
  PlantAndReopen({{"g-opts", Units({2, 0})}});
  EXPECT_EQ(Of(EncodedPosting(7, {2})), (Hits{{7, 1, {2}}}));
}

TEST_F(QueryWordTest, MatchesByteForByte) {
  PlantAndReopen({{"cat", EncodedPosting(1, {1})}});
  for (const char* word : {"Cat", "ca", "cats", " cat", ""}) EXPECT_EQ(Word(word), -1) << word;
  EXPECT_EQ(Word("cat"), 1);
}

TEST_F(QueryWordTest, UnknownWordIsMinus1AndSilent) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Word("cat"), -1); }), "");
}

TEST_F(QueryWordTest, RemovedDocumentsAreStillThere) {
  engine_.AddDocumentWords("one", "cat");
  engine_.RemoveDocumentWords("one");
  EXPECT_EQ(HitsOf(Word("cat")), (Hits{{1, 1, {1}}}));
}

TEST_F(QueryWordTest, SeesPostingsThatAreNotFlushed) {
  engine_.AddDocumentWords("one", "cat");
  engine_.FlushIndex();
  engine_.AddDocumentWords("two", "cat");
  EXPECT_EQ(HitsOf(Word("cat")), (Hits{{1, 1, {1}}, {2, 1, {1}}}));
}

TEST_F(QueryWordTest, FirstPostingOfACodeCounts) {
  EXPECT_EQ(Of(EncodedPosting(5, {1, 2}) + EncodedPosting(3, {4}) + EncodedPosting(5, {9}) +
               EncodedPosting(3, {8})),
            (Hits{{3, 1, {4}}, {5, 2, {1, 2}}}));
  EXPECT_EQ(Of(EncodedPosting(3, {1, 2}) + EncodedPosting(3, {9})), (Hits{{3, 2, {1, 2}}}));
}

TEST_F(QueryWordTest, FirstUnitOfACodeCountsWithoutPositions) {
  DropPositions();
  EXPECT_EQ(Of(Units({3, 3, 2})), (Hits{{2, 1, {0}}, {3, 1, {0}}}));
  EXPECT_EQ(Of(Units({3, 3})), (Hits{{3, 1, {0}}}));
}

TEST_F(QueryWordTest, EmptyRecordIsAnEmptySet) { EXPECT_EQ(Of(""), Hits{}); }

TEST_F(QueryWordTest, OddLastByteIsIgnored) {
  EXPECT_EQ(Of(EncodedPosting(3, {9}) + "x"), (Hits{{3, 1, {9}}}));
  EXPECT_EQ(Of("x"), Hits{});
}

TEST_F(QueryWordTest, OddLastByteIsIgnoredWithoutPositions) {
  DropPositions();
  EXPECT_EQ(Of(Units({3}) + "x"), (Hits{{3, 1, {0}}}));
}

TEST_F(QueryWordTest, CountPastTheEndIsCutToWhatIsLeft) {
  EXPECT_EQ(Of(Units({1, 3, 10, 20})), (Hits{{1, 2, {10, 20}}}));
  EXPECT_EQ(Of(Units({1, 65535})), (Hits{{1, 0, {}}}));
}

TEST_F(QueryWordTest, MissingCountIs0) {
  EXPECT_EQ(Of(Units({7})), (Hits{{7, 0, {}}}));
  EXPECT_EQ(Of(EncodedPosting(1, {5}) + Units({7})), (Hits{{1, 1, {5}}, {7, 0, {}}}));
}

TEST_F(QueryWordTest, EveryTruncationOfARecordIsServed) {
  const std::string whole = EncodedPosting(1, {8}) + EncodedPosting(2, {9, 10});
  const std::vector<Hits> expected = {
      {},
      {{1, 0, {}}},
      {{1, 0, {}}},
      {{1, 1, {8}}},
      {{1, 1, {8}}, {2, 0, {}}},
      {{1, 1, {8}}, {2, 0, {}}},
      {{1, 1, {8}}, {2, 1, {9}}},
      {{1, 1, {8}}, {2, 2, {9, 10}}},
  };
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    EXPECT_EQ(Of(whole.substr(0, size)), expected[size / 2]) << size;
  }
}

TEST_F(QueryWordTest, AnyChangedByteIsServed) {
  const std::string whole = EncodedPosting(1, {8}) + EncodedPosting(2, {9, 10});
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string changed = whole;
    changed[at] = '\xff';
    EXPECT_FALSE(Of(changed).empty()) << at;
  }
}

TEST_F(QueryWordTest, RecordOf65535PositionsIsRead) {
  const Hits hits = Of(EncodedPosting(1, From(1, 65535)) + EncodedPosting(2, {1}));
  EXPECT_EQ(hits, (Hits{{1, 65535, From(1, 65535)}, {2, 1, {1}}}));
}

TEST_F(QueryWordTest, KeyOfASystemRecordIsReadAsAWord) {
  PlantAndReopen({{"g-code", Units({4})}, {"d-name", Units({11, 1, 12, 0})}});
  EXPECT_EQ(HitsOf(Word("g-code")), (Hits{{4, 0, {}}}));
  EXPECT_EQ(HitsOf(Word("d-name")), (Hits{{0, 0, {}}, {11, 1, {12}}}));
}

TEST_F(QueryWordTest, WithoutAnIndexIsMinus1) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Word("cat"), -1); }),
            "Kestan: Call to database::get without an open database\n");
}

}  // namespace
}  // namespace kestan_tests
