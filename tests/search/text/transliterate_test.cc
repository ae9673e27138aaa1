// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/transliterate.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan::search {
namespace {

std::string Repeated(std::size_t count, const std::string& text) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

bool IsAscii(const std::string& text) {
  for (char byte : text) {
    if (static_cast<unsigned char>(byte) >= 0x80) return false;
  }
  return true;
}

TEST(TransliterateTest, AsciiStaysAsItIs) {
  std::string ascii;
  for (int byte = 0; byte < 128; ++byte) ascii += static_cast<char>(byte);
  EXPECT_EQ(Transliterated(ascii), ascii);
  EXPECT_EQ(Transliterated(""), "");
}

TEST(TransliterateTest, AccentsAreDropped) {
  EXPECT_EQ(Transliterated("Z\u00fcrich caf\u00e9 \u0141\u00f3d\u017a"), "Zurich cafe Lodz");
}

TEST(TransliterateTest, AccentsOfTheirOwnAreDropped) {
  EXPECT_EQ(Transliterated("Zu\u0308rich e\u0301"), "Zurich e");
}

TEST(TransliterateTest, LettersThatStandForTwoAreSpelledOut) {
  EXPECT_EQ(Transliterated("stra\u00dfe \u00e6on \u0153uvre \ufb01ne"), "strasse aeon oeuvre fine");
}

TEST(TransliterateTest, OtherScriptsAreWrittenInLatinLetters) {
  EXPECT_EQ(Transliterated("\u041f\u0440\u0438\u0432\u0435\u0442, \u043c\u0438\u0440"),
            "Privet, mir");
  EXPECT_EQ(Transliterated("\u03bb\u03cc\u03b3\u03bf\u03c2"), "logos");
}

TEST(TransliterateTest, ChineseSignsAreWordsOfTheirOwn) {
  EXPECT_EQ(Transliterated("\u5317\u4eac"), " bei  jing ");
  EXPECT_EQ(Transliterated("a\u5317\u30bf\u00e9"), "a bei tae");
}

TEST(TransliterateTest, TypographicApostrophesBecomePlain) {
  EXPECT_EQ(Transliterated("don\u2019t"), "don't");
}

TEST(TransliterateTest, WhatHasNoLetterBecomesABlank) {
  EXPECT_EQ(Transliterated("a\U0001f600b"), "a b");
}

TEST(TransliterateTest, WhatIsNotSeenSplitsNoWord) {
  EXPECT_EQ(Transliterated("hy\u00adphen zero\u200bwidth \ufeffmark"), "hyphen zerowidth mark");
}

TEST(TransliterateTest, BytesThatAreNotUtf8AreLatin1) {
  EXPECT_EQ(Transliterated("Z\xfcrich"), "Zurich");
  EXPECT_EQ(Transliterated("\xe9"), "e");
  EXPECT_EQ(Transliterated("caf\xe9 Z\u00fcrich"), "cafe Zurich");
}

TEST(TransliterateTest, TruncatedCharactersAreLatin1) {
  EXPECT_EQ(Transliterated("a\xc3"), "aA");
  EXPECT_EQ(Transliterated("a\xe2\x82"), "aa ");  // a control character
}

TEST(TransliterateTest, EveryByteByItselfGivesAscii) {
  for (int byte = 128; byte < 256; ++byte) {
    EXPECT_TRUE(IsAscii(Transliterated(std::string(1, static_cast<char>(byte))))) << byte;
  }
}

TEST(TransliterateTest, LongRunsAreCutBetweenWordsAndLoseNothing) {
  const std::string sentence = Repeated(100, "\u043c\u0438\u0440\u3002");
  EXPECT_EQ(Transliterated(sentence), Transliterated(Repeated(1, sentence)));
  std::string letters = Transliterated(sentence);
  std::size_t count = 0;
  for (std::size_t at = letters.find("mir"); at != std::string::npos;
       at = letters.find("mir", at + 1)) {
    ++count;
  }
  EXPECT_EQ(count, 100u);
  EXPECT_EQ(letters.find("mirmir"), std::string::npos);
}

TEST(TransliterateTest, RunWithoutAnyEndIsReadInChunks) {
  EXPECT_EQ(Transliterated(Repeated(20000, "\u0434")), std::string(20000, 'd'));
}

}  // namespace
}  // namespace kestan::search
