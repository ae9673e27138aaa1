// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/roff/roff_escapes.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

std::string Plain(const std::string& text) { return WithoutEscapes(text, {{"Aq", "'"}}); }

TEST(RoffEscapesTest, FontsAndSizesLeaveNothing) {
  EXPECT_EQ(Plain("a\\fBb\\f(CWc\\f[R]d\\s-2e\\s0f\\s'+1'g\\m[red]h"), "abcdefgh");
}

TEST(RoffEscapesTest, BlanksAndDashesStay) {
  EXPECT_EQ(Plain("\\-\\-all\\ b\\~c\\0d\\|e\\^f\\&g"), "--all b c defg");
}

TEST(RoffEscapesTest, CharactersHaveNames) {
  EXPECT_EQ(Plain("\\(em\\(co\\[lq]x\\[rq]\\e\\\\"), "\u2014\u00a9\"x\"\\\\");
  EXPECT_EQ(Plain("\\[u00FC]\\[u0075_0308]\\N'65'\\C'em'"), "\u00fcu\u0308A\u2014");
  EXPECT_EQ(Plain("\\(:u\\('e"), "u\u0308e\u0301");
}

TEST(RoffEscapesTest, NoCharacterIsBroken) {
  EXPECT_EQ(Plain("\\[uD800]\\[u110000]\\[u0]\\[uFFFFFFFFFF]\\[nothing]x"), "x");
}

TEST(RoffEscapesTest, StringsAreReplaced) { EXPECT_EQ(Plain("don\\*(Aqt \\*[no]\\*x"), "don't "); }

TEST(RoffEscapesTest, CommentsEndTheLine) { EXPECT_EQ(Plain("text\\\" comment"), "text"); }

TEST(RoffEscapesTest, ArgumentsInQuotesAreLeftOut) {
  EXPECT_EQ(Plain("a\\h'1m'b\\v'-.1v'c\\w|x|d\\n(.gd\\n+xd"), "abcddd");
}

TEST(RoffEscapesTest, EveryEscapeMayBeCut) {
  const std::string text = "\\f(CW\\s'+1'\\*[no]\\[u00FC]\\N'65'\\h'1m'\\n+x\\(em\\e";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    EXPECT_EQ(Plain(text.substr(0, size)).find('\0'), std::string::npos) << size;
  }
}

}  // namespace
}  // namespace kestan_cli
