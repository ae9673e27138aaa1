// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::StripNonWords of kestan/indexing/strip.cc.
#include <kestan/kestan.h>

#include "tests/indexing/strip_block.h"

namespace kestan_tests {
namespace {

// The function is promised a buffer of one byte more than the text has.
Stripped NonWords(std::string_view text) { return StripInPlace(text, 1, Kestan::StripNonWords); }

TEST(StripNonWordsTest, EmptyTextWritesNothing) {
  const Stripped result = NonWords("");
  EXPECT_EQ(result.length, 0);
  EXPECT_EQ(result.buffer, "#");
}

TEST(StripNonWordsTest, ShortenedTextLosesItsLastBlankToATerminator) {
  const Stripped result = NonWords("abc...x");
  EXPECT_EQ(result.length, 5);
  EXPECT_EQ(result.text, "abc x");
  EXPECT_EQ(result.buffer, std::string("abc x\0x#", 8));
}

TEST(StripNonWordsTest, TextOfTheSameLengthKeepsItsLastBlankAndGetsNoTerminator) {
  const Stripped result = NonWords("abc.");
  EXPECT_EQ(result.length, 4);
  EXPECT_EQ(result.buffer, "abc #");
}

TEST(StripNonWordsTest, BlankAfterALastLetterIsPastTheText) {
  const Stripped result = NonWords("abc");
  EXPECT_EQ(result.length, 4);
  EXPECT_EQ(result.buffer, "abc ");
}

TEST(StripNonWordsTest, InputThatEndsAmongSeparatorsStillGetsABlank) {
  EXPECT_EQ(NonWords("abc..").buffer, "abc  #");
  EXPECT_EQ(NonWords("abc...").buffer, std::string("abc \0.#", 7));
}

TEST(StripNonWordsTest, TextWithoutLettersLeavesOneBlankAtMost) {
  EXPECT_EQ(NonWords(".").buffer, " #");
  const Stripped result = NonWords("..");
  EXPECT_EQ(result.length, 0);
  EXPECT_EQ(result.buffer, std::string("\0.#", 3));
}

TEST(StripNonWordsTest, LineFeedAfterASeparatorReplacesTheBlank) {
  const Stripped result = NonWords("abc.\ndef");
  EXPECT_EQ(result.length, 8);
  EXPECT_EQ(result.text, "abc\ndef ");
}

TEST(StripNonWordsTest, LineFeedRightAfterAWordIsLost) {
  const Stripped result = NonWords("abc\ndef");
  EXPECT_EQ(result.length, 8);
  EXPECT_EQ(result.text, "abc def ");
}

TEST(StripNonWordsTest, LeadingLineFeedsStay) {
  EXPECT_EQ(NonWords("\n\nabc").text, "\n\nabc ");
  EXPECT_EQ(NonWords("\n").text, "\n ");
  EXPECT_EQ(NonWords(" \n \nabc").text, "\n\nabc");
}

TEST(StripNonWordsTest, BlankLinesAfterSeparatorsStay) {
  EXPECT_EQ(NonWords("abc.\n\ndef").text, "abc\n\ndef ");
  EXPECT_EQ(NonWords("abc.\n.\ndef").text, "abc\n\ndef");
  EXPECT_EQ(NonWords("abc\n\ndef").text, "abc\ndef ");
}

TEST(StripNonWordsTest, LastLineFeedStaysBeforeTheLastBlank) {
  EXPECT_EQ(NonWords("abc.\n").buffer, "abc\n #");
  EXPECT_EQ(NonWords("abc..\n").text, "abc\n");
}

TEST(StripNonWordsTest, ApostropheBetweenLettersStays) {
  EXPECT_EQ(NonWords("rock'n'roll").text, "rock'n'roll ");
  EXPECT_EQ(NonWords("don't").text, "don't ");
}

TEST(StripNonWordsTest, ApostropheAtTheEndOfAWordGoes) {
  const Stripped result = NonWords("rock' roll");
  EXPECT_EQ(result.length, 10);
  EXPECT_EQ(result.text, "rock roll ");
  EXPECT_EQ(NonWords("rock'").buffer, "rock #");
  EXPECT_EQ(NonWords("a''b").text, "a b ");
}

TEST(StripNonWordsTest, ApostropheEndsAWordSoThatALineFeedAfterItStays) {
  EXPECT_EQ(NonWords("abc'\ndef").text, "abc\ndef ");
}

TEST(StripNonWordsTest, ApostropheBeforeAWordGoes) {
  EXPECT_EQ(NonWords("'tis").text, "tis ");
  EXPECT_EQ(NonWords("it 'tis").text, "it tis ");
}

TEST(StripNonWordsTest, LetterPastTheLengthDoesNotKeepAnApostrophe) {
  const auto strip_five = [](char* text, unsigned) { return Kestan::StripNonWords(text, 5); };
  const Stripped result = StripInPlace("rock'n", 0, strip_five);
  EXPECT_EQ(result.length, 5);
  EXPECT_EQ(result.buffer, "rock n");
}

TEST(StripNonWordsTest, DigitsSeparateAndCaseStays) {
  EXPECT_EQ(NonWords("Ab1cD").text, "Ab cD ");
  EXPECT_EQ(NonWords("A42b").text, "A b ");
}

TEST(StripNonWordsTest, OnlyTheLettersOfTheDefaultLocaleStay) {
  for (int byte = 0; byte < 256; ++byte) {
    const char one = static_cast<char>(byte);
    const bool letter = (one >= 'A' && one <= 'Z') || (one >= 'a' && one <= 'z');
    const std::string kept = letter ? std::string(1, one) + " " : one == '\n' ? "\n " : " ";
    EXPECT_EQ(NonWords(std::string_view(&one, 1)).text, kept) << byte;
  }
}

TEST(StripNonWordsTest, BytesAboveTheLettersSeparateWords) {
  EXPECT_EQ(NonWords("na\xc3\xafve").text, "na ve ");
  EXPECT_EQ(NonWords(std::string_view("a\0b", 3)).text, "a b ");
}

}  // namespace
}  // namespace kestan_tests
