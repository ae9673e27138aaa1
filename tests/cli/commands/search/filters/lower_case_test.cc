// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/lower_case.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(LowerCaseOfAllTest, CapitalsOfAllScriptsAreLowered) {
  EXPECT_EQ(LowerCaseOfAll("AbC.Txt"), "abc.txt");
  EXPECT_EQ(LowerCaseOfAll("\xc3\x84\xc3\x96 \xd0\x9c \xce\xa9"),
            "\xc3\xa4\xc3\xb6 \xd0\xbc \xcf\x89");
  EXPECT_EQ(LowerCaseOfAll("\xf0\x90\x90\x80"), "\xf0\x90\x90\xa8");  // Deseret, past U+FFFF
}

TEST(LowerCaseOfAllTest, OtherCharactersStay) {
  EXPECT_EQ(LowerCaseOfAll(""), "");
  EXPECT_EQ(LowerCaseOfAll("\xe5\x8c\x97 1 \xf0\x9f\x98\x80"), "\xe5\x8c\x97 1 \xf0\x9f\x98\x80");
}

TEST(LowerCaseOfAllTest, BytesThatAreNotUtf8Stay) {
  EXPECT_EQ(LowerCaseOfAll("A\xff\xc3"), "a\xff\xc3");
  EXPECT_EQ(LowerCaseOfAll("\xed\xa0\x80"), "\xed\xa0\x80");
}

}  // namespace
}  // namespace kestan_cli
