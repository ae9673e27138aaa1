// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/words.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan::search {
namespace {

TEST(CleanWordsTest, KeepsLettersOnly) {
  EXPECT_EQ(CleanWords("e-mail, 2nd \"try\"."), "e mail nd try ");
}

TEST(CleanWordsTest, TakesApostrophesOut) {
  EXPECT_EQ(CleanWords("don't 'quote'."), "dont quote ");
}

TEST(CleanWordsTest, CutsWordsAfter64Letters) {
  EXPECT_EQ(CleanWords(std::string(64, 'x')), std::string(64, 'x') + " ");
  EXPECT_EQ(CleanWords(std::string(65, 'x') + " y."), std::string(64, 'x') + " y ");
}

TEST(CleanWordsTest, NothingStaysNothing) { EXPECT_EQ(CleanWords(""), ""); }

TEST(CleanWordsTest, DropsStopWordsWithShortWords) {
  EXPECT_EQ(CleanWords("The cat is here", "the here"), " cat   ");
}

}  // namespace
}  // namespace kestan::search
