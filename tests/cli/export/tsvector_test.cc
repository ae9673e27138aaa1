// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/tsvector.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/cli/export/held_document.h"

namespace kestan_tests {
namespace {

using kestan_cli::MakeTsVector;
using kestan_cli::TsVector;
using Words = std::vector<kestan::search::PlacedWord>;

TsVector VectorOf(const Words& words) {
  HeldDocument document;
  document.words = words;
  return MakeTsVector(document);
}

std::string TextOf(const Words& words) {
  const TsVector made = VectorOf(words);
  EXPECT_EQ(made.losses.Text(), "");
  return made.text;
}

TEST(TsVectorTest, NoWordsAreAnEmptyVector) { EXPECT_EQ(TextOf({}), ""); }

TEST(TsVectorTest, WordsAreInLowerCaseAndKeepTheirPositions) {
  EXPECT_EQ(TextOf({{"Hello", 1}, {"world", 2}, {"HELLO", 3}}), "'hello':1,3 'world':2");
}

TEST(TsVectorTest, OnlyAToZAreLowered) {
  EXPECT_EQ(TextOf({{"@AZ[\xc3\x89", 1}}), "'@az[\xc3\x89':1");
}

TEST(TsVectorTest, WordsWithoutPlacesAreThereOnce) {
  EXPECT_EQ(TextOf({{"Ape", 0}, {"ape", 0}, {"bee", 0}}), "'ape' 'bee'");
}

TEST(TsVectorTest, APlaceIsThereOnce) {
  EXPECT_EQ(TextOf({{"A", 1}, {"a", 1}, {"a", 2}}), "'a':1,2");
}

TEST(TsVectorTest, QuotesAndBackslashesAreDoubled) {
  EXPECT_EQ(TextOf({{"O'Neill", 1}, {"\\", 2}, {"''\\\\", 3}}),
            "'o''neill':1 '\\\\':2 '''''\\\\\\\\':3");
}

TEST(TsVectorTest, OtherSignsStandAsTheyAre) {
  EXPECT_EQ(TextOf({{"a:1,2*&|!<->(\"", 1}}), "'a:1,2*&|!<->(\"':1");
}

TEST(TsVectorTest, WordsThatAreNotUtf8AreLatin1) {
  const TsVector made = VectorOf({{"caf\xe9", 1}, {"caf\xc3\xa9", 2}});
  EXPECT_EQ(made.text, "'caf\xc3\xa9':1,2");
  EXPECT_TRUE(made.was_latin1);
  EXPECT_FALSE(VectorOf({{"caf\xc3\xa9", 2}}).was_latin1);
}

TEST(TsVectorTest, NulsAreReplaced) {
  const TsVector made = VectorOf({{{"a\0b", 3}, 1}});
  EXPECT_EQ(made.text,
            "'a\xef\xbf\xbd"
            "b':1");
  EXPECT_TRUE(made.had_nul);
}

TEST(TsVectorTest, LongWordsAreLeftOutAndReported) {
  const std::string longest(kestan_cli::kMaxLexemeBytes, 'w');
  EXPECT_EQ(TextOf({{longest, 1}}), "'" + longest + "':1");
  const std::string longer = longest + "w";
  const TsVector made = VectorOf({{longer, 1}, {"a", 2}, {longer, 3}});
  EXPECT_EQ(made.text, "'a':2");
  EXPECT_EQ(made.losses.Text(), "1 word of more than 2046 bytes left out");
}

TEST(TsVectorTest, LatePlacesAreLeftOutAndTheWordsStay) {
  EXPECT_EQ(TextOf({{"a", 16383}}), "'a':16383");
  const TsVector made = VectorOf({{"a", 16383}, {"a", 16384}, {"b", 65535}});
  EXPECT_EQ(made.text, "'a':16383 'b'");
  EXPECT_EQ(made.losses.Text(), "2 positions past 16383 left out");
}

TEST(TsVectorTest, AWordKeeps256Places) {
  Words words;
  for (std::uint16_t position = 1; position <= 256; ++position) words.push_back({"a", position});
  EXPECT_EQ(TextOf(words).substr(TextOf(words).size() - 8), ",255,256");
  words.push_back({"a", 257});
  const TsVector made = VectorOf(words);
  EXPECT_EQ(made.text.substr(made.text.size() - 8), ",255,256");
  EXPECT_EQ(made.losses.Text(), "1 position past the 256th of a word left out");
}

TEST(TsVectorTest, WhatDoesNotFitIsReportedAndShorterWordsStillGoIn) {
  std::vector<std::string> texts;
  for (int i = 0; i < 600; ++i) texts.push_back(std::to_string(1000 + i) + std::string(2000, 'w'));
  texts.emplace_back("a");
  Words words;
  for (const std::string& text : texts) words.push_back({text, 1});
  const TsVector made = VectorOf(words);
  // Each takes 2004 bytes and 5 at the most around them.
  EXPECT_EQ(made.losses.Text(), "79 words past the 1 MB of a tsvector left out");
  EXPECT_EQ(made.text.substr(made.text.size() - 6), " 'a':1");
}

TEST(TsVectorTest, AWordWithoutAByteIsLeftOut) {
  const TsVector made = VectorOf({{"", 1}});
  EXPECT_EQ(made.text, "");
  EXPECT_EQ(made.losses.Text(), "1 word without a byte left out");
}

}  // namespace
}  // namespace kestan_tests
