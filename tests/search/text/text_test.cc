// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/search/text.h>

#include <string>

namespace kestan::search {
namespace {

TEST(TextTest, TextIsWrittenInAscii) {
  const auto ascii = ToAscii("Z\xc3\xbcrich \xff");
  ASSERT_TRUE(ascii.ok());
  EXPECT_EQ(*ascii, "Zurich y");
}

TEST(TextTest, WordsAreKeptAndStopWordsDropped) {
  const auto words = KeepWords("The cat, 42 don't!");
  ASSERT_TRUE(words.ok());
  EXPECT_EQ(*words, "The cat dont");
  const auto fewer = KeepWords("the cat at home", "cat");
  ASSERT_TRUE(fewer.ok());
  EXPECT_EQ(fewer->find("cat"), std::string::npos);
  EXPECT_EQ(fewer->find(" at "), std::string::npos);
  EXPECT_NE(fewer->find("home"), std::string::npos);
}

TEST(TextTest, StopWordsAreAsTheyAreIndexed) {
  const auto words = KeepWords("The cat of the house", EnglishStopWords());
  ASSERT_TRUE(words.ok());
  EXPECT_EQ(words->find("The"), std::string::npos);
  EXPECT_NE(words->find("house"), std::string::npos);
}

}  // namespace
}  // namespace kestan::search
