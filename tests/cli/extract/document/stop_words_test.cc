// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/stop_words.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/console/message.h"
#include "cli/extract/document/document.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class StopWordsTest : public kestan_tests::CommandTest {
 protected:
  std::string Left(const std::string& text, const std::string& choice) {
    const WordRules rules{StopWords(choice), false};
    const Document document = MakeDocument(text, TitleRule::kFirstLine, rules);
    const std::string words = document.text + document.words;
    return Excerpt(words, words.size());
  }
};

TEST_F(StopWordsTest, NoneAreLeftOutByDefault) {
  EXPECT_EQ(Left("The cat is on the mat", ""), "The cat is on the mat");
}

TEST_F(StopWordsTest, EnglishOnesAreLeftOutWithShortWords) {
  EXPECT_EQ(Left("The cat isn't on the mat, and THEY don't care", "english"), "cat mat care");
}

TEST_F(StopWordsTest, FileHoldsWordsInAnyScript) {
  Write("stop", "Caf\u00e9\nmat, Привет");
  EXPECT_EQ(Left("The cafe caf\u00e9 MAT привет 17 end", Path("stop")), "the 17 end");
}

TEST_F(StopWordsTest, EmptyFileLeavesAllWordsIn) {
  Write("stop", " \n");
  EXPECT_EQ(Left("a mat", Path("stop")), "a mat");
}

TEST_F(StopWordsTest, FileThatCannotBeReadIsReported) {
  EXPECT_THROW(StopWords(Path("none")), CommandError);
  Write("binary", std::string(1, '\0'));
  try {
    StopWords(Path("binary"));
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_EQ(error.what(), "cannot read '" + Path("binary") + "': not a text");
  }
}

}  // namespace
}  // namespace kestan_cli
