// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::AddDocumentWords of kestan/indexing/indexer.cc: the list of new words and its buffer.
#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

class NewWordsTest : public IndexTest {
 protected:
  // Adds a document and returns its new words, which lie in the scratch buffer.
  std::string Of(const std::string& text) {
    const char* const words = engine_.AddDocumentWords("document", text.c_str());
    EXPECT_EQ(words, Kestan::WordBuf);
    return words;
  }

  // A word that is `length` bytes long and has no capitals.
  static std::string Word(std::size_t length, char letter = 'w') {
    return std::string(length, letter);
  }
};

TEST_F(NewWordsTest, BufferIsUnsetBeforeTheFirstDocument) {
  EXPECT_EQ(Kestan::WordBuf, nullptr);
  EXPECT_EQ(Kestan::WBSize, 0U);
}

TEST_F(NewWordsTest, EmptyListLiesInTheBufferToo) {
  EXPECT_EQ(Of(""), "");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(NewWordsTest, AreInOrderOfTheirBytes) {
  EXPECT_EQ(Of("b ab a \xff abc 1 aa"), "1\na\naa\nab\nabc\nb\n\xff\n");
}

TEST_F(NewWordsTest, UpperCaseSortsBeforeLowerCase) {
  EXPECT_EQ(Of("Hello world"), "Hello\nhello\nworld\n");
}

TEST_F(NewWordsTest, AreOnlyThoseWithoutARecord) {
  Of("cat dog");
  EXPECT_EQ(Of("cat cow Dog"), "Dog\ncow\n");
}

TEST_F(NewWordsTest, DoNotComeBackWhileTheirRecordIsEmpty) {
  PlantAndReopen({{"cat", ""}});
  EXPECT_EQ(Of("cat"), "");
}

TEST_F(NewWordsTest, WordWithTwoBytesToSpareFitsTheBuffer) {
  EXPECT_EQ(Of(Word(4094)), Word(4094) + "\n");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(NewWordsTest, WordWithOneByteToSpareDoublesTheBuffer) {
  EXPECT_EQ(Of(Word(4095)), Word(4095) + "\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(NewWordsTest, RoomIsCountedFromTheEndOfTheList) {
  EXPECT_EQ(Of(Word(2000) + " " + Word(2093, 'x')), Word(2000) + "\n" + Word(2093, 'x') + "\n");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(NewWordsTest, ListOneByteLongerDoublesTheBuffer) {
  EXPECT_EQ(Of(Word(2000) + " " + Word(2094, 'x')), Word(2000) + "\n" + Word(2094, 'x') + "\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(NewWordsTest, BufferDoublesOnlyOnceForOneWord) {
  EXPECT_EQ(Of(Word(10000)), Word(10000) + "\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(NewWordsTest, BufferDoublesAgainAtTheNextWord) {
  EXPECT_EQ(Of(Word(10000) + " x"), Word(10000) + "\nx\n");
  EXPECT_EQ(Kestan::WBSize, 16384U);
}

TEST_F(NewWordsTest, BufferDoublesForEachWordThatIsPastItsEnd) {
  EXPECT_EQ(Of(Word(40000) + " x y z"), Word(40000) + "\nx\ny\nz\n");
  EXPECT_EQ(Kestan::WBSize, 65536U);
}

TEST_F(NewWordsTest, BufferNeverShrinks) {
  Of(Word(4095));
  EXPECT_EQ(Of("x"), "x\n");
  EXPECT_EQ(Kestan::WBSize, 8192U);
}

TEST_F(NewWordsTest, KnownWordsTakeNoRoom) {
  PlantAndReopen({{Word(10000), ""}});
  EXPECT_EQ(Of(Word(10000)), "");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

TEST_F(NewWordsTest, ManyWordsAllComeBack) {
  std::string text, expected;
  for (unsigned i = 10000; i < 20000; ++i) {
    text += std::to_string(i) + " ";
    expected += std::to_string(i) + "\n";
  }
  EXPECT_EQ(Of(text), expected);
  EXPECT_EQ(Kestan::WBSize, 65536U);
}

TEST_F(NewWordsTest, LargerBufferIsKeptAsItIs) {
  engine_.DBPutWords("list", std::string(5000, 'l').c_str());
  ASSERT_EQ(Kestan::WBSize, 9096U);
  Of("word");
  EXPECT_EQ(Kestan::WBSize, 9096U);
}

TEST_F(NewWordsTest, BufferCountedAs0GrowsTo4096) {
  engine_.DBPutTitle("name", std::string(5000, 't').c_str());
  engine_.DBGetTitle("name");
  ASSERT_EQ(Kestan::WBSize, 0U);
  EXPECT_EQ(Of("word"), "word\n");
  EXPECT_EQ(Kestan::WBSize, 4096U);
}

}  // namespace
}  // namespace kestan_tests
