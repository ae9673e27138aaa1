// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/stop_words.h"

#include <gtest/gtest.h>
#include <kestan/search/text.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

TEST(StopWordsTest, FirstAndLastOfTheListAreKnown) {
  EXPECT_TRUE(IsStopWord("a"));
  EXPECT_TRUE(IsStopWord("the"));
  EXPECT_TRUE(IsStopWord("yourself"));
  EXPECT_FALSE(IsStopWord("flow"));
  EXPECT_FALSE(IsStopWord(""));
}

TEST(StopWordsTest, OneCapitalIsABeginningMoreAreAName) {
  EXPECT_TRUE(IsStopWord("What"));
  EXPECT_TRUE(IsStopWord("A"));
  EXPECT_FALSE(IsStopWord("IT"));
}

TEST(StopWordsTest, AllOfTheListAreKnown) {
  std::istringstream list(EnglishStopWords());
  std::vector<std::string> words;
  for (std::string word; list >> word;) words.push_back(word);
  EXPECT_EQ(words.size(), 177u);
  for (const std::string& word : words) EXPECT_TRUE(IsStopWord(word)) << word;
}

TEST(StopWordsTest, WordsThatQuestionsArePutInAreNoStopWordsOtherwise) {
  for (const char* word : {"anyone", "Using", "used", "per", "etc"}) {
    EXPECT_TRUE(IsAskedWith(word)) << word;
    EXPECT_FALSE(IsStopWord(word)) << word;
  }
  EXPECT_FALSE(IsAskedWith("the"));
  EXPECT_FALSE(IsAskedWith("PER"));
  EXPECT_FALSE(IsAskedWith(""));
}

}  // namespace
}  // namespace kestan::search
