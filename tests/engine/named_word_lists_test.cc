// SPDX-License-Identifier: GPL-3.0-or-later
// Named word lists: what is stored, what comes back, and the size that the scratch buffer takes.
#include <clocale>
#include <string>

#include "tests/format/word_items.h"
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

class WordListsTest : public IndexTest {
 protected:
  // Stores `words` and returns the bytes that the file has for them.
  std::string StoredFor(const std::string& words) {
    EXPECT_EQ(engine_.DBPutWords("list", words.c_str()), 0);
    return Stored().at("w-list");
  }

  // Stores `words` and reads them back.
  std::string ThereAndBack(const std::string& words) {
    EXPECT_EQ(engine_.DBPutWords("list", words.c_str()), 0);
    const char* const lines = engine_.DBGetWords("list");
    return lines == nullptr ? "null" : lines;
  }

  // Reads the list that a record of `bytes` holds.
  std::string Decoded(const std::string& bytes) {
    PlantAndReopen({{"w-list", bytes}});
    return engine_.DBGetWords("list");
  }
};

TEST_F(WordListsTest, AreStoredWithoutWhatAWordSharesWithTheOneBefore) {
  EXPECT_EQ(StoredFor("alpha alphabet alps"), Item(0, "alpha") + Item(5, "bet") + Item(3, "s"));
}

TEST_F(WordListsTest, ComeBackOneWordALine) {
  EXPECT_EQ(ThereAndBack("alpha alphabet alps"), "alpha\nalphabet\nalps\n");
}

TEST_F(WordListsTest, ComeBackInTheScratchBuffer) {
  engine_.DBPutWords("list", "alpha");
  EXPECT_EQ(engine_.DBGetWords("list"), Kestan::WordBuf);
}

TEST_F(WordListsTest, DoubledWhiteSpaceMakesTheNextWordWhole) {
  const std::string words = "  alpha  alphabet";
  EXPECT_EQ(StoredFor(words), Item(0, "alpha") + Item(0, "alphabet"));
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_EQ(ThereAndBack(words), "alpha\nalphabet\n");
}

TEST_F(WordListsTest, AListThatOthersCutShorterReadsTheSame) {
  EXPECT_EQ(Decoded(Item(0, "alpha") + Item(5, "bet") + Item(2, "ps")), "alpha\nalphabet\nalps\n");
}

TEST_F(WordListsTest, ARepeatedWordIsOneByte) {
  EXPECT_EQ(StoredFor("abc abc"), Item(0, "abc") + Item(3));
}

TEST_F(WordListsTest, AWordThatBeginsTheOneBeforeIsOneByte) {
  EXPECT_EQ(StoredFor("alphabet alpha"), Item(0, "alphabet") + Item(5));
}

TEST_F(WordListsTest, TheSixWhiteSpaceBytesSeparateWords) {
  EXPECT_EQ(ThereAndBack("a b\tc\nd\ve\ff\rg"), "a\nb\nc\nd\ne\nf\ng\n");
}

TEST_F(WordListsTest, NoOtherByteSeparatesWordsWhateverTheLocale) {
  std::setlocale(LC_ALL, "C.UTF-8");
  std::string others;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != ' ' && (byte < '\t' || byte > '\r')) others += static_cast<char>(byte);
  }
  for (char byte : others) {
    const std::string word = std::string("a") + byte + "b";
    EXPECT_EQ(StoredFor(word), Item(0, word));
    engine_.OpenIndex(path_.c_str(), 1);
  }
}

TEST_F(WordListsTest, WhiteSpaceAroundTheWordsIsDropped) {
  EXPECT_EQ(ThereAndBack(" \n alpha \t"), "alpha\n");
}

TEST_F(WordListsTest, KeepTheFirst127BytesOfAWord) {
  const std::string longest(127, 'x');
  for (std::size_t length : {std::size_t{127}, std::size_t{128}, std::size_t{200}}) {
    EXPECT_EQ(StoredFor(std::string(length, 'x')), Item(0, longest));
    engine_.OpenIndex(path_.c_str(), 1);
    EXPECT_EQ(ThereAndBack(std::string(length, 'x')), longest + "\n");
  }
  EXPECT_EQ(ThereAndBack(std::string(126, 'x')), std::string(126, 'x') + "\n");
}

TEST_F(WordListsTest, WordsThatDifferBeyond127BytesAreTheSame) {
  const std::string longest(127, 'x');
  EXPECT_EQ(StoredFor(longest + "a " + longest + "b"), Item(0, longest) + Item(127));
}

TEST_F(WordListsTest, MayBeEmpty) {
  EXPECT_EQ(StoredFor(""), "");
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_STREQ(engine_.DBGetWords("list"), "");
}

TEST_F(WordListsTest, OfWhiteSpaceAloneAreEmpty) {
  EXPECT_EQ(StoredFor(" \t\n "), "");
  engine_.OpenIndex(path_.c_str(), 1);
  EXPECT_STREQ(engine_.DBGetWords("list"), "");
}

TEST_F(WordListsTest, ThatWereNeverStoredAreNull) {
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.DBGetWords("list"), nullptr); }), "");
  EXPECT_EQ(Kestan::WBSize, 0u);
}

TEST_F(WordListsTest, AreReplacedByTheNextOne) {
  engine_.DBPutWords("list", "alpha beta");
  EXPECT_EQ(ThereAndBack("gamma"), "gamma\n");
}

TEST_F(WordListsTest, AreDistinguishedByTheirNames) {
  engine_.DBPutWords("a", "alpha");
  engine_.DBPutWords("b", "beta");
  EXPECT_STREQ(engine_.DBGetWords("a"), "alpha\n");
  EXPECT_STREQ(engine_.DBGetWords("b"), "beta\n");
}

TEST_F(WordListsTest, AreWrittenAtOnce) {
  GdbmWatch gdbm;
  engine_.DBPutWords("list", "alpha");
  EXPECT_EQ(gdbm.Lines(), std::vector<std::string>{"store w-list"});
}

TEST_F(WordListsTest, WithoutAnIndexTheStoreComplains) {
  engine_.CloseIndex();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.DBPutWords("list", "alpha"), -1); }),
            "Kestan: Call to database::put without an open database\n");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(engine_.DBGetWords("list"), nullptr); }),
            "Kestan: Call to database::get without an open database\n");
}

TEST_F(WordListsTest, AFileThatRefusesGivesItsErrorInSilence) {
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(StandardErrorOf(
                [&] { EXPECT_EQ(engine_.DBPutWords("list", "alpha"), GDBM_FILE_WRITE_ERROR); }),
            "");
}

TEST_F(WordListsTest, BytesAbove127AreStoredAndReadAsNewWords) {
  EXPECT_EQ(StoredFor("caf\xe9"), Item(0, "caf\xe9"));
  engine_.OpenIndex(path_.c_str(), 1);
  std::string expected = "caf\n";
  while (expected.size() < 4 + 0x69) expected += expected[expected.size() - 4];
  EXPECT_EQ(engine_.DBGetWords("list"), expected + "\n");
}

TEST_F(WordListsTest, ManyBytesAbove127StayWithinTheBuffer) {
  const std::string lines = ThereAndBack("x" + std::string(100, '\xff'));
  EXPECT_EQ(lines.size(), 1u + 100u * 128u + 1u);
}

TEST_F(WordListsTest, TheWordsMayLieInTheScratchBuffer) {
  engine_.DBPutWords("list", "alpha alphabet beta");
  EXPECT_EQ(engine_.DBPutWords("copy", engine_.DBGetWords("list")), 0);
  EXPECT_STREQ(engine_.DBGetWords("copy"), "alpha\nalphabet\nbeta\n");
}

TEST_F(WordListsTest, ALongTextComesBackWhole) {
  std::string words;
  std::string lines;
  for (int i = 0; i < 20000; ++i) {
    words += "word" + std::to_string(i * 7919 % 20000) + " ";
    lines += "word" + std::to_string(i * 7919 % 20000) + "\n";
  }
  EXPECT_EQ(ThereAndBack(words), lines);
}

TEST_F(WordListsTest, StoringSetsTheSizeToTheLengthPlus4096) {
  engine_.DBPutWords("list", "a");
  EXPECT_EQ(Kestan::WBSize, 4097u);
  engine_.DBPutWords("list", std::string(4097, 'x').c_str());
  EXPECT_EQ(Kestan::WBSize, 4097u);
  engine_.DBPutWords("list", std::string(4098, 'x').c_str());
  EXPECT_EQ(Kestan::WBSize, 8194u);
}

TEST_F(WordListsTest, StoringSetsTheSizeEvenWhereTheFileRefuses) {
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(engine_.DBPutWords("list", "a"), GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(Kestan::WBSize, 4097u);
}

TEST_F(WordListsTest, StoringSetsTheSizeEvenWithoutAnIndex) {
  engine_.CloseIndex();
  StandardErrorOf([&] { EXPECT_EQ(engine_.DBPutWords("list", "ab"), -1); });
  EXPECT_EQ(Kestan::WBSize, 4098u);
}

TEST_F(WordListsTest, StoringNothingNeedsNoStatedSize) {
  EXPECT_EQ(engine_.DBPutWords("list", ""), 0);
  EXPECT_EQ(Kestan::WBSize, 0u);
}

TEST_F(WordListsTest, AnEncodingOfOneByteMoreThanTheSizeFits) {
  std::string words;  // each word differs from the one before, and the last ends the text
  while (words.size() < 4097) words += words.size() % 4 == 0 ? "a " : "b ";
  words.resize(4097);
  engine_.DBPutWords("list", "a");
  EXPECT_EQ(StoredFor(words).size(), 4098u);
  EXPECT_EQ(Kestan::WBSize, 4097u);
}

TEST_F(WordListsTest, ReadingSetsTheSizeToThreeTimesTheRecordPlus4096) {
  PlantAndReopen({{"w-a", Item(0, "a")}, {"w-ab", Item(0, "ab")}});
  engine_.DBGetWords("a");
  EXPECT_EQ(Kestan::WBSize, 4102u);
  engine_.DBGetWords("a");
  EXPECT_EQ(Kestan::WBSize, 4102u);
  engine_.DBGetWords("ab");
  EXPECT_EQ(Kestan::WBSize, 4105u);
  engine_.DBGetWords("a");
  EXPECT_EQ(Kestan::WBSize, 4105u);
}

TEST_F(WordListsTest, ReadingAnEmptyListSetsTheSizeTo4096) {
  EXPECT_EQ(Decoded(""), "");
  EXPECT_EQ(Kestan::WBSize, 4096u);
}

// A word of 127 bytes, the same 36 times more, and one of `last` bytes that begins at 4736.
std::string RepeatedWord(std::size_t last) {
  return Item(0, std::string(127, 'x')) + std::string(36, '\xff') + Item(0, std::string(last, 'y'));
}

std::string RepeatedLines(std::size_t last) {
  std::string lines;
  for (int i = 0; i < 37; ++i) lines += std::string(127, 'x') + "\n";
  return lines + std::string(last, 'y') + "\n";
}

TEST_F(WordListsTest, AWordWithJust128BytesLeftDoesNotGrowTheSize) {
  EXPECT_EQ(Decoded(RepeatedWord(91)), RepeatedLines(91));
  EXPECT_EQ(Kestan::WBSize, 4736u + 128u);
}

TEST_F(WordListsTest, AWordWithFewerBytesLeftGrowsItByAQuarterAnd4096) {
  EXPECT_EQ(Decoded(RepeatedWord(90)), RepeatedLines(90));
  EXPECT_EQ(Kestan::WBSize, 4861u + 1215u + 4096u);
}

TEST_F(WordListsTest, ManyRepeatedWordsGrowTheSizeAgainAndAgain) {
  const std::string record = Item(0, std::string(127, 'x')) + std::string(1000, '\xff');
  std::uint32_t size = 3 * 1128 + 4096;
  for (std::uint32_t start = 0; start <= 128u * 1000; start += 128) {
    if (start > size - 128) size += size / 4 + 4096;
  }
  EXPECT_EQ(Decoded(record).size(), 128u * 1001);
  EXPECT_EQ(Kestan::WBSize, size);
}

}  // namespace
}  // namespace kestan_tests
