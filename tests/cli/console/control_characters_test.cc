// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/control_characters.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

std::string InBrackets(std::string_view bytes) { return "[" + std::string(bytes) + "]"; }

std::string Marked(std::string_view text) { return EscapeControls(text, InBrackets); }

TEST(ControlCharactersTest, LettersOfAnyScriptAreNoControls) {
  for (const char* text : {"", " a~", "\xc3\xa9", "\xc2\xa0", "\xe4\xb8\xad", "\xf0\x9f\x98\x80"}) {
    EXPECT_EQ(Marked(text), text);
  }
}

TEST(ControlCharactersTest, FirstAndLastOfEachRangeAreControls) {
  EXPECT_EQ(Marked({"\0\x1f \x7e\x7f", 5}), std::string("[\0][\x1f] \x7e[\x7f]", 11));
  EXPECT_EQ(Marked("\xc2\x80\xc2\x9f\xc2\xa0"), "[\xc2\x80][\xc2\x9f]\xc2\xa0");
  EXPECT_EQ(Marked("\xe2\x80\xa9\xe2\x80\xaa\xe2\x80\xae\xe2\x80\xaf"),
            "\xe2\x80\xa9[\xe2\x80\xaa][\xe2\x80\xae]\xe2\x80\xaf");
  EXPECT_EQ(Marked("\xe2\x81\xa5\xe2\x81\xa6\xe2\x81\xa9\xe2\x81\xaa"),
            "\xe2\x81\xa5[\xe2\x81\xa6][\xe2\x81\xa9]\xe2\x81\xaa");
}

TEST(ControlCharactersTest, EachByteThatIsNotUtf8IsAControl) {
  EXPECT_EQ(Marked("\x80\x9f\xff"), "[\x80][\x9f][\xff]");
  EXPECT_EQ(Marked("\xe2\x80"), "[\xe2][\x80]");
  EXPECT_EQ(Marked("\xc0\x9b"), "[\xc0][\x9b]");
}

TEST(ControlCharactersTest, JsonEscapesThemWithFourDigits) {
  EXPECT_EQ(EscapeControlsInJson("\"\x7f\xc2\x9b\xe2\x80\xae\xc3\xa9\""),
            "\"\\u007f\\u009b\\u202e\xc3\xa9\"");
}

}  // namespace
}  // namespace kestan_cli
