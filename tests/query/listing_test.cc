// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::QueryResults of kestan/query/listing.cc.
#include <algorithm>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

class QueryResultsTest : public QueryTest {
 protected:
  // Lists documents named by their codes, 1 and up, that have these scores.
  std::string Of(const Numbers& scores) {
    std::string postings;
    Records names;
    for (unsigned score : scores) {
      const auto code = static_cast<unsigned>(names.size()) + 1;
      postings += EncodedPosting(code, Numbers(score, 1));
      names[NameKey(code)] = std::to_string(code);
    }
    PlantAndReopen(names);
    return List(Postings(postings));
  }

  // Lists one document that has a name of this many bytes.
  std::string OfName(std::size_t length) {
    PlantAndReopen({{NameKey(1), std::string(length, 'n')}});
    return List(At({1}));
  }

  static std::string Name(std::size_t length) { return std::string(length, 'n'); }

  std::string List(int id) {
    const char* const lines = engine_.QueryResults(id);
    EXPECT_EQ(lines, Kestan::WordBuf);
    return lines;
  }
};

TEST_F(QueryResultsTest, ScalesToTheBestScore) {
  EXPECT_EQ(Of({7, 3}), "100 1\n43 2\n");
  EXPECT_EQ(Of({3, 7}), "43 1\n100 2\n");
}

TEST_F(QueryResultsTest, RoundsHalvesUp) {
  EXPECT_EQ(Of({8, 1, 2, 3, 4, 5, 6, 7}), "100 1\n13 2\n25 3\n38 4\n50 5\n63 6\n75 7\n88 8\n");
  EXPECT_EQ(Of({200, 1}), "100 1\n1 2\n");
  EXPECT_EQ(Of({201, 1}), "100 1\n0 2\n");
}

TEST_F(QueryResultsTest, EqualScoresAreAll100) { EXPECT_EQ(Of({1, 1}), "100 1\n100 2\n"); }

TEST_F(QueryResultsTest, EveryBestScoreUpTo32768IsListedAs100) {
  for (unsigned best : {1U, 2U, 3U, 99U, 101U, 6553U, 32767U, 32768U}) {
    EXPECT_EQ(Of({best}), "100 1\n") << best;
  }
}

TEST_F(QueryResultsTest, BestScoreAbove32768MayBeListedAs99) {
  EXPECT_EQ(Of({65000}), "99 1\n");
  EXPECT_EQ(Of({65535}), "100 1\n");
  EXPECT_EQ(Of({60000, 30000}), "100 1\n50 2\n");
}

TEST_F(QueryResultsTest, ScoresOfZeroAreListedAs0) {
  EXPECT_EQ(Of({0, 0}), "0 1\n0 2\n");
  EXPECT_EQ(Of({0, 5}), "0 1\n100 2\n");
}

TEST_F(QueryResultsTest, NegationListsEveryDocumentWith0) {
  engine_.AddDocumentWords("one", "cat");
  engine_.AddDocumentWords("two", "cat");
  EXPECT_EQ(List(Not(-1)), "0 one\n0 two\n");
}

TEST_F(QueryResultsTest, LinesFollowTheCodesNotTheScores) {
  PlantAndReopen({{NameKey(300), "a"}, {NameKey(2), "b"}, {NameKey(65535), "c"}});
  EXPECT_EQ(List(Postings(EncodedPosting(65535, {1, 2}) + EncodedPosting(300, {1}) +
                          EncodedPosting(2, {1, 2}))),
            "100 b\n50 a\n100 c\n");
}

TEST_F(QueryResultsTest, RemovedDocumentsAreLeftOut) {
  for (const char* name : {"one", "two", "three"}) engine_.AddDocumentWords(name, "cat");
  engine_.RemoveDocumentWords("two");
  EXPECT_EQ(List(Word("cat")), "100 one\n100 three\n");
}

// The name of a removed document is planted again: only the list of removed codes still says that
// it was removed.
TEST_F(QueryResultsTest, CodesListedAsRemovedAreLeftOutWhateverTheirName) {
  PlantAndReopen({{"g-deleted", Units({1, 3})}});
  EXPECT_EQ(Of({2, 2, 2, 1}), "100 2\n50 4\n");
}

TEST_F(QueryResultsTest, CodesListedTwiceAsRemovedAreLeftOutToo) {
  PlantAndReopen({{"g-deleted", Units({2, 2})}});
  EXPECT_EQ(Of({1, 1, 1}), "100 1\n100 3\n");
}

TEST_F(QueryResultsTest, RemovedDocumentDoesNotSetTheScale) {
  PlantAndReopen({{"g-deleted", Units({1})}});
  EXPECT_EQ(Of({100, 4, 1}), "100 2\n25 3\n");
}

TEST_F(QueryResultsTest, DocumentWithoutNameIsLeftOutButSetsTheScale) {
  PlantAndReopen({{NameKey(2), "two"}});
  EXPECT_EQ(List(Postings(EncodedPosting(1, {1, 2, 3, 4}) + EncodedPosting(2, {1}))), "25 two\n");
}

TEST_F(QueryResultsTest, OddByteOfTheRemovedCodesIsNoCode) {
  PlantAndReopen({{"g-deleted", Units({1}) + "\x02"}});
  EXPECT_EQ(Of({1, 1, 1}), "100 2\n100 3\n");
}

TEST_F(QueryResultsTest, UnknownIdIsAnEmptyTextOutsideTheBuffer) {
  const auto list = [&] { EXPECT_STREQ(engine_.QueryResults(99), ""); };
  EXPECT_EQ(StandardErrorOf(list), "");
  EXPECT_NE(engine_.QueryResults(-1), nullptr);
  EXPECT_EQ(Kestan::WordBuf, nullptr);
  EXPECT_EQ(Kestan::WBSize, 0U);
}

TEST_F(QueryResultsTest, UnknownIdLeavesTheBufferAlone) {
  const char* const words = engine_.AddDocumentWords("one", "cat");
  EXPECT_NE(engine_.QueryResults(99), words);
  EXPECT_STREQ(words, "cat\n");
}

TEST_F(QueryResultsTest, EmptySetIsAnEmptyTextInTheBuffer) {
  EXPECT_EQ(Of({}), "");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(QueryResultsTest, SetOfRemovedDocumentsIsAnEmptyTextInTheBuffer) {
  PlantAndReopen({{"g-deleted", Units({2, 1})}});
  EXPECT_EQ(Of({3, 4}), "");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(QueryResultsTest, ListsTheSameTwice) {
  const std::string once = Of({7, 3});
  EXPECT_EQ(List(1), once);
  EXPECT_EQ(HitsOf(1).size(), 2U);
}

TEST_F(QueryResultsTest, NamesAreListedByteForByte) {
  const std::string name("a \0\n\xff%u", 7);
  PlantAndReopen({{NameKey(1), name}, {NameKey(2), ""}});
  engine_.QueryResults(Postings(EncodedPosting(1, {1}) + EncodedPosting(2, {1})));
  EXPECT_EQ(std::string(Kestan::WordBuf, 18), "100 " + name + "\n100 \n" + '\0');
}

TEST_F(QueryResultsTest, NameWith20BytesToSpareFitsTheBuffer) {
  EXPECT_EQ(OfName(4076), "100 " + Name(4076) + "\n");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(QueryResultsTest, NameWith19BytesToSpareDoublesTheBuffer) {
  EXPECT_EQ(OfName(4077), "100 " + Name(4077) + "\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(QueryResultsTest, BufferDoublesOnlyOnceForOneLine) {
  EXPECT_EQ(OfName(10000), "100 " + Name(10000) + "\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(QueryResultsTest, BufferDoublesAgainAtTheNextLine) {
  PlantAndReopen({{NameKey(1), Name(10000)}, {NameKey(2), "x"}, {NameKey(3), "y"}});
  EXPECT_EQ(
      List(Postings(EncodedPosting(1, {1}) + EncodedPosting(2, {1}) + EncodedPosting(3, {1}))),
      "100 " + Name(10000) + "\n100 x\n100 y\n");
  EXPECT_EQ(Kestan::WBSize, 16384U);
}

TEST_F(QueryResultsTest, RoomIsCountedFromTheEndOfTheLines) {
  // The first line takes 4 + 2000 + 1 bytes and leaves 2091.
  PlantAndReopen({{NameKey(1), Name(2000)}, {NameKey(2), Name(2071)}});
  const int both = Postings(EncodedPosting(1, {1}) + EncodedPosting(2, {1}));
  List(both);
  EXPECT_EQ(Kestan::WBSize, 4096U);
  PlantAndReopen({{NameKey(2), Name(2072)}});
  EXPECT_EQ(List(both), "100 " + Name(2000) + "\n100 " + Name(2072) + "\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(QueryResultsTest, ManyLinesAllComeBack) {
  const std::string listing = Of(Numbers(2000, 1));
  EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), 2000);
  EXPECT_EQ(listing.substr(listing.size() - 9), "100 2000\n");
}

TEST_F(QueryResultsTest, BufferOfAtMost4095GrowsTo4096) {
  engine_.DBPutTitle("name", std::string(5000, 't').c_str());
  engine_.DBGetTitle("name");
  ASSERT_EQ(Kestan::WBSize, 0U);
  EXPECT_EQ(OfName(10), "100 nnnnnnnnnn\n");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(QueryResultsTest, WithoutAnIndexNoDocumentHasAName) {
  const int id = At({1});
  engine_.CloseIndex();
  const std::string message = "Kestan: Call to database::get without an open database\n";
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(List(id), ""); }), message + message);
}

}  // namespace
}  // namespace kestan_tests
