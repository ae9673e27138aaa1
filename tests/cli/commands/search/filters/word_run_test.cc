// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/word_run.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

bool Stands(const std::string& words, const std::string& text) {
  return WordRun(words).StandsIn(text);
}

TEST(WordRunTest, WordsStandInARow) {
  EXPECT_TRUE(Stands("boundary layer", "The boundary layer of a wing"));
  EXPECT_TRUE(Stands("wing", "The boundary layer of a wing"));
  EXPECT_FALSE(Stands("layer boundary", "The boundary layer of a wing"));
  EXPECT_FALSE(Stands("boundary of", "The boundary layer of a wing"));
  EXPECT_FALSE(Stands("wing tip", "The boundary layer of a wing"));
}

TEST(WordRunTest, WordsAreWholeButBeforeAStar) {
  EXPECT_FALSE(Stands("bound", "boundary layer"));
  EXPECT_TRUE(Stands("bound*", "boundary layer"));
  EXPECT_TRUE(Stands("boundary lay*", "boundary layer"));
  EXPECT_FALSE(Stands("bound layer*", "boundary layer"));
}

TEST(WordRunTest, CapitalsAccentsAndPunctuationDoNotCount) {
  EXPECT_TRUE(Stands("jurgen", "J\xc3\xbcrgen <j@example.org>"));
  EXPECT_TRUE(Stands("ANN OTHER", "Ann Other"));
  EXPECT_TRUE(Stands("ann@example.org", "Ann Other <Ann@Example.org>"));
  EXPECT_TRUE(Stands("ann other", "\"Ann, Other\""));
  EXPECT_FALSE(Stands("ann@example.org", "ann@example.com"));
}

TEST(WordRunTest, AllOccurrencesOfTheFirstWordAreTried) {
  EXPECT_TRUE(Stands("a b", "a a b"));
  EXPECT_TRUE(Stands("a b a c", "a b a b a c"));
}

TEST(WordRunTest, ScriptsWithoutBlanksAreFoundWithinLongerText) {
  EXPECT_TRUE(Stands("\xe5\x8c\x97\xe4\xba\xac", "\xe5\x8c\x97\xe4\xba\xac\xe5\xb8\x82"));
  EXPECT_FALSE(Stands("\xe4\xba\xac\xe5\x8c\x97", "\xe5\x8c\x97\xe4\xba\xac\xe5\xb8\x82"));
  EXPECT_TRUE(Stands("\xe5\xb8\x82", "\xe5\x8c\x97\xe4\xba\xac\xe5\xb8\x82"));
  EXPECT_TRUE(Stands("\xe5\x8c\x97\xe4\xba\xac linux", "\xe5\x8c\x97\xe4\xba\xac Linux"));
}

TEST(WordRunTest, WordsOfPunctuationAreFoundToo) {
  EXPECT_TRUE(Stands("c++", "The C++ language"));
  EXPECT_FALSE(Stands("c++", "The C language"));
  EXPECT_TRUE(Stands("c++ language", "The C++ language"));
}

TEST(WordRunTest, TextWithoutWordsIsEmptyAndStandsNowhere) {
  EXPECT_TRUE(WordRun("?!").empty());
  EXPECT_TRUE(WordRun("").empty());
  EXPECT_TRUE(WordRun("*").empty());
  EXPECT_FALSE(Stands("?!", "?!"));
  EXPECT_FALSE(Stands("a", ""));
}

TEST(WordRunTest, QueryAsksForAllWords) {
  EXPECT_EQ(WordRun("Boundary lay*").AsQuery(), "boundary AND lay*");
  EXPECT_EQ(WordRun("J\xc3\xbcrgen AND").AsQuery(), "jurgen AND and");
  EXPECT_EQ(WordRun("\xd0\x9c\xd0\xb8\xd1\x80").AsQuery(), "\xd0\xbc\xd0\xb8\xd1\x80");
}

}  // namespace
}  // namespace kestan_cli
