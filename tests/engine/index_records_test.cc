// SPDX-License-Identifier: GPL-3.0-or-later
// The index's own records as they lie in the file after documents were added.
#include <ctime>
#include <string>

#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using IndexRecordsTest = IndexTest;

std::string NameKey(unsigned code) { return "c-" + Units({code}); }

TEST_F(IndexRecordsTest, AreTheseAndNoOthers) {
  engine_.AddDocumentWords("doc1", "Hello world");
  Records stored = Stored();
  EXPECT_EQ(stored.at("d-doc1").size(), 8u);
  stored.erase("d-doc1");
  EXPECT_EQ(stored, (Records{{"g-opts", std::string(4, '\0')},
                             {"g-code", Units({1})},
                             {NameKey(1), "doc1"},
                             {"Hello", Units({1, 1, 1})},
                             {"hello", Units({1, 1, 1})},
                             {"world", Units({1, 1, 2})}}));
}

TEST_F(IndexRecordsTest, ADocumentRecordHoldsTimeAndCode) {
  const auto before = static_cast<std::uint32_t>(std::time(nullptr));
  engine_.AddDocumentWords("doc1", "words");
  const auto after = static_cast<std::uint32_t>(std::time(nullptr));
  const std::uint32_t timestamp = engine_.DocumentTimestamp("doc1");
  EXPECT_GE(timestamp, before);
  EXPECT_LE(timestamp, after);
  EXPECT_EQ(Stored().at("d-doc1"), Units({timestamp & 0xffff, timestamp >> 16, 1, 0}));
}

TEST_F(IndexRecordsTest, TheCounterIsTheHighestCodeHandedOut) {
  engine_.AddDocumentWords("doc1", "");
  engine_.AddDocumentWords("doc2", "");
  engine_.RemoveDocumentWords("doc2");
  EXPECT_EQ(Stored().at("g-code"), Units({2}));
}

TEST_F(IndexRecordsTest, WithoutADocumentThereIsNoCounter) {
  EXPECT_EQ(Stored().count("g-code"), 0u);
}

TEST_F(IndexRecordsTest, AReusedCodeMakesNoCounter) {
  PlantAndReopen({{"g-avail", Units({3})}});
  engine_.AddDocumentWords("doc1", "");
  const Records stored = Stored();
  EXPECT_EQ(stored.count("g-code"), 0u);
  EXPECT_EQ(stored.at(NameKey(3)), "doc1");
}

TEST_F(IndexRecordsTest, PostingsStandInTheOrderInWhichDocumentsWereAdded) {
  engine_.AddDocumentWords("doc1", "word other word");
  engine_.AddDocumentWords("doc2", "word");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("word"), Units({1, 2, 1, 3, 2, 1, 1}));
  EXPECT_EQ(stored.at("g-code"), Units({2}));
}

TEST_F(IndexRecordsTest, AReusedCodeStandsAfterHigherOnes) {
  PlantAndReopen({{"g-avail", Units({3})}, {"g-code", Units({9})}, {"word", Units({9, 1, 1})}});
  engine_.AddDocumentWords("doc1", "word");
  EXPECT_EQ(Stored().at("word"), Units({9, 1, 1, 3, 1, 1}));
}

TEST_F(IndexRecordsTest, WithoutPositionsPostingsAreCodes) {
  engine_.SetOptionFlag(1);
  engine_.AddDocumentWords("doc1", "word word");
  engine_.AddDocumentWords("doc2", "word");
  EXPECT_EQ(Stored().at("word"), Units({1, 2}));
}

TEST_F(IndexRecordsTest, ANameKeyMayHoldZeros) {
  PlantAndReopen({{"g-code", Units({255})}});
  engine_.AddDocumentWords("doc256", "");
  EXPECT_STREQ(engine_.ListDocuments(), "doc256\n");
  EXPECT_EQ(Stored().at(std::string("c-\0\1", 4)), "doc256");
}

TEST_F(IndexRecordsTest, NameKeysThatDifferAfterAZeroAreTwo) {
  PlantAndReopen({{"g-code", Units({255})}, {NameKey(512), "doc512"}});
  engine_.AddDocumentWords("doc256", "");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(256)), "doc256");
  EXPECT_EQ(stored.at(NameKey(512)), "doc512");
}

TEST_F(IndexRecordsTest, AnEmptyPostingRecordIsAWordWithoutDocuments) {
  engine_.AddDocumentWords("doc1", "other");
  PlantAndReopen({{"word", ""}});
  const int id = engine_.QueryWord("word");
  EXPECT_GT(id, 0);
  EXPECT_EQ(Listing(id), "");
}

TEST_F(IndexRecordsTest, TheCodeOfADocumentIsTheUnitAtByteFour) {
  engine_.AddDocumentWords("doc1", "word");
  PlantAndReopen({{"d-doc1", Units({0, 0, 1, 65535})}});
  EXPECT_EQ(engine_.RemoveDocumentWords("doc1"), 0);
  const Records stored = Stored();
  EXPECT_EQ(stored.at("g-deleted"), Units({1}));
  EXPECT_EQ(stored.count(NameKey(1)), 0u);
}

TEST_F(IndexRecordsTest, PositionsGoOnWithOneAfter65535) {
  std::string text;
  for (int i = 0; i < 65534; ++i) text += "a ";
  engine_.AddDocumentWords("doc1", (text + "b c d").c_str());
  const Records stored = Stored();
  EXPECT_EQ(stored.at("b"), Units({1, 1, 65535}));
  EXPECT_EQ(stored.at("c"), Units({1, 1, 1}));
  EXPECT_EQ(stored.at("d"), Units({1, 1, 2}));
}

TEST_F(IndexRecordsTest, APostingHoldsAtMost65535Positions) {
  std::string text;
  for (int i = 0; i < 65535; ++i) text += "a ";
  engine_.AddDocumentWords("doc1", text.c_str());
  engine_.AddDocumentWords("doc2", (text + "a a a").c_str());
  const std::string record = Stored().at("a");
  EXPECT_EQ(record.size(), 2u * 2u * (2u + 65535u));
  EXPECT_EQ(record.substr(0, 6), Units({1, 65535, 1}));
  EXPECT_EQ(record.substr(record.size() / 2, 6), Units({2, 65535, 1}));
  EXPECT_EQ(record.substr(record.size() - 2), Units({65535}));
}

}  // namespace
}  // namespace kestan_tests
