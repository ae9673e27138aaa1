// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::AddDocumentWords of kestan/indexing/indexer.cc: postings, positions and records.
#include <ctime>

#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

class AddDocumentTest : public IndexTest {
 protected:
  std::string Add(const char* name, const std::string& text) {
    return engine_.AddDocumentWords(name, text.c_str());
  }

  bool IsIndexed(const std::string& word) {
    const int id = engine_.QueryWord(word.c_str());
    engine_.FreeQueryResult(id);
    return id != -1;
  }
};

TEST_F(AddDocumentTest, FirstDocumentGetsCode1AndItsPostings) {
  EXPECT_EQ(Add("one", "Hello world"), "Hello\nhello\nworld\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("g-code"), Units({1}));
  EXPECT_EQ(stored.at("Hello"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("hello"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("world"), EncodedPosting(1, {2}));
}

TEST_F(AddDocumentTest, SecondDocumentIsAppended) {
  Add("one", "Hello world");
  EXPECT_EQ(Add("two", "hello Hello"), "");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("hello"), EncodedPosting(1, {1}) + EncodedPosting(2, {1, 2}));
  EXPECT_EQ(stored.at("Hello"), EncodedPosting(1, {1}) + EncodedPosting(2, {2}));
  EXPECT_EQ(stored.at("world"), EncodedPosting(1, {2}));
  EXPECT_EQ(stored.at("g-code"), Units({2}));
}

TEST_F(AddDocumentTest, WithoutPositionsAPostingIsTheBareCode) {
  engine_.SetOptionFlag(1);
  Add("one", "Hello world");
  Add("two", "hello Hello hello");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("hello"), Units({1, 2}));
  EXPECT_EQ(stored.at("Hello"), Units({1, 2}));
  EXPECT_EQ(stored.at("world"), Units({1}));
}

TEST_F(AddDocumentTest, OtherOptionFlagsKeepPositions) {
  engine_.SetOptionFlag(2);
  Add("one", "word");
  EXPECT_EQ(Stored().at("word"), EncodedPosting(1, {1}));
}

TEST_F(AddDocumentTest, WritesTheNameAndTheDocumentRecord) {
  const auto before = static_cast<std::uint32_t>(std::time(nullptr));
  Add("a name", "word");
  const auto after = static_cast<std::uint32_t>(std::time(nullptr));
  const Records stored = Stored();
  EXPECT_EQ(stored.at(std::string("c-\x01\x00", 4)), "a name");
  const std::string& record = stored.at("d-a name");
  EXPECT_EQ(record.substr(4), Units({1, 0}));
  EXPECT_GE(TimestampOf(record), before);
  EXPECT_LE(TimestampOf(record), after);
}

TEST_F(AddDocumentTest, WritesNoOtherRecords) {
  Add("one", "word");
  const Records stored = Stored();
  EXPECT_EQ(stored.size(), 5U) << "g-code, g-opts, c-, d- and the word";
}

TEST_F(AddDocumentTest, WhiteSpaceMakesNoWordsAndMovesNoPositions) {
  EXPECT_EQ(Add("one", " \t\n\v\f\r one \r\n two\f\vthree\t"), "one\nthree\ntwo\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("one"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("two"), EncodedPosting(1, {2}));
  EXPECT_EQ(stored.at("three"), EncodedPosting(1, {3}));
}

TEST_F(AddDocumentTest, OnlySixBytesAreWhiteSpace) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string word = std::string("w") + static_cast<char>(byte) + "w";
    Add("document", word);
    const bool separates = byte == ' ' || (byte >= '\t' && byte <= '\r');
    EXPECT_EQ(IsIndexed(word), !separates) << byte;
  }
}

TEST_F(AddDocumentTest, TextWithoutWordsStillTakesACode) {
  EXPECT_EQ(Add("empty", ""), "");
  EXPECT_EQ(Add("white", " \n "), "");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("g-code"), Units({2}));
  EXPECT_EQ(stored.at(NameKey(1)), "empty");
  EXPECT_EQ(stored.at(NameKey(2)), "white");
  EXPECT_EQ(stored.at("d-empty").size(), 8U);
  EXPECT_EQ(stored.size(), 6U) << "g-code, g-opts and two records for each document";
}

TEST_F(AddDocumentTest, WordsWithBit5SetAreRecordedOnce) {
  EXPECT_EQ(Add("one", "abc 123 ~{}"), "123\nabc\n~{}\n");
}

TEST_F(AddDocumentTest, CapitalsAreRecordedAsWrittenAndFolded) {
  EXPECT_EQ(Add("one", "ABC aBc"), "ABC\naBc\nabc\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("ABC"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("aBc"), EncodedPosting(1, {2}));
  EXPECT_EQ(stored.at("abc"), EncodedPosting(1, {1, 2}));
}

TEST_F(AddDocumentTest, FoldSetsBit5OfEveryByte) {
  EXPECT_EQ(Add("one", "@"), "@\n`\n");
  EXPECT_EQ(Add("two", "_"), "_\n\x7f\n");
  EXPECT_EQ(Add("three", "\x01\xc0\xdf"), "\x01\xc0\xdf\n!\xe0\xff\n");
  EXPECT_EQ(Add("four", "[\\]^"), "[\\]^\n{|}~\n");
}

TEST_F(AddDocumentTest, WordAndItsFoldedFormShareOneRecordInOneDocument) {
  Add("one", "Cat cat CAT");
  EXPECT_EQ(Stored().at("cat"), EncodedPosting(1, {1, 2, 3}));
}

TEST_F(AddDocumentTest, PositionAfter65535Is1) {
  Add("one", Times(65534, "x ") + "y z Last");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("y"), EncodedPosting(1, {65535}));
  EXPECT_EQ(stored.at("z"), EncodedPosting(1, {1}));
  EXPECT_EQ(stored.at("Last"), EncodedPosting(1, {2}));
  EXPECT_EQ(stored.at("last"), EncodedPosting(1, {2}));
}

TEST_F(AddDocumentTest, WordMayOccur65535Times) {
  Add("one", Times(65535, "x ") + "y");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("x"), EncodedPosting(1, From(1, 65535)));
  EXPECT_EQ(stored.at("y"), EncodedPosting(1, {1}));
}

TEST_F(AddDocumentTest, OccurrencesAfterThe65535thAreNotRecorded) {
  Add("one", Times(65537, "x ") + "y");
  Add("two", "x");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("x"), EncodedPosting(1, From(1, 65535)) + EncodedPosting(2, {1}));
  EXPECT_EQ(stored.at("y"), EncodedPosting(1, {3}));
}

TEST_F(AddDocumentTest, PositionsKeepTheirOrderHoweverMany) {
  const Numbers counts = {63, 64, 65, 127, 128, 129, 1025};
  for (unsigned count : counts) Add("one", Times(count, "x" + std::to_string(count) + " "));
  const Records stored = Stored();
  unsigned code = 0;
  for (unsigned count : counts) {
    EXPECT_EQ(stored.at("x" + std::to_string(count)), EncodedPosting(++code, From(1, count)));
  }
}

TEST_F(AddDocumentTest, SameNameGetsANewCodeAndTheOldOneWaits) {
  Add("one", "cat");
  EXPECT_EQ(Add("one", "cat dog"), "dog\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("g-deleted"), Units({1}));
  EXPECT_EQ(stored.at("cat"), EncodedPosting(1, {1}) + EncodedPosting(2, {1}));
  EXPECT_EQ(stored.at("d-one").substr(4), Units({2, 0}));
  EXPECT_EQ(stored.count(NameKey(1)), 0U);
  EXPECT_EQ(stored.at(NameKey(2)), "one");
}

TEST_F(AddDocumentTest, NewRecordsReachTheFileAtOnceAndTheirPostingsAtTheFlush) {
  Add("one", "word");
  Add("two", "word");
  std::filesystem::copy_file(path_, folder_ / "before");
  const Records before = Dump(folder_ / "before");
  EXPECT_EQ(before.at("word"), "");
  EXPECT_EQ(before.at("g-code"), Units({1}));
  EXPECT_EQ(before.at(NameKey(2)), "two");
  engine_.FlushIndex();
  std::filesystem::copy_file(path_, folder_ / "after");
  EXPECT_EQ(Dump(folder_ / "after").at("word"), EncodedPosting(1, {1}) + EncodedPosting(2, {1}));
}

TEST_F(AddDocumentTest, EmptyNameIsANameLikeAnyOther) {
  Add("", "word");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("d-").size(), 8U);
  EXPECT_EQ(stored.at(NameKey(1)), "");
}

// Cleaned text has no such words; in other text they meet the records of the index itself.
TEST_F(AddDocumentTest, WordThatLooksLikeASystemKeyGrowsThatRecord) {
  EXPECT_EQ(Add("one", "g-code"), "");
  EXPECT_EQ(Stored().at("g-code"), Units({1}) + EncodedPosting(1, {1}));
}

TEST_F(AddDocumentTest, TextMayLieInTheScratchBuffer) {
  ASSERT_EQ(Add("one", "Cat dog"), "Cat\ncat\ndog\n");
  EXPECT_STREQ(engine_.AddDocumentWords("two", Kestan::WordBuf), "");
  const Records stored = Stored();
  EXPECT_EQ(stored.at("cat"), EncodedPosting(1, {1}) + EncodedPosting(2, {1, 2}));
  EXPECT_EQ(stored.at("dog"), EncodedPosting(1, {2}) + EncodedPosting(2, {3}));
}

TEST_F(AddDocumentTest, NameMayLieInTheScratchBuffer) {
  engine_.DBPutTitle("key", "the name");
  const char* const name = engine_.DBGetTitle("key");
  ASSERT_EQ(name, Kestan::WordBuf);
  const std::string word(10000, 'w');
  EXPECT_EQ(engine_.AddDocumentWords(name, word.c_str()), word + "\n");
  const Records stored = Stored();
  EXPECT_EQ(stored.at(NameKey(1)), "the name");
  EXPECT_EQ(stored.count("d-the name"), 1U);
}

TEST_F(AddDocumentTest, StoreThatRefusesWritesDoesNotStopTheCall) {
  engine_.CloseIndex();
  ASSERT_EQ(engine_.OpenIndex(path_.c_str(), 0), 0);
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(Add("one", "cat dog"), "cat\ndog\n"); }), "");
  EXPECT_EQ(Listing(engine_.QueryWord("cat")), "100 one\n");
  StandardErrorOf([&] { engine_.CloseIndex(); });
  EXPECT_EQ(Dump(path_).count("cat"), 0U);
}

TEST_F(AddDocumentTest, WithoutAnIndexNothingIsAdded) {
  engine_.CloseIndex();
  StandardErrorOf([&] { EXPECT_STREQ(engine_.AddDocumentWords("one", "cat"), ""); });
  EXPECT_EQ(Dump(path_).size(), 1U) << "g-opts alone";
}

}  // namespace
}  // namespace kestan_tests
