// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/message.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace kestan_cli {
namespace {

TEST(MessageTest, ControlCharactersAreEscaped) {
  EXPECT_EQ(OneLine("a\nb\x1b[1m\x7f"), "a\\nb\\x1b[1m\\x7f");
}

TEST(MessageTest, ControlCharactersOfTwoBytesAreEscaped) {
  EXPECT_EQ(OneLine("\xc2\x80 \xc2\x9b \xc2\xa0 \xc2"), "\\xc2\\x80 \\xc2\\x9b \xc2\xa0 \\xc2");
}

TEST(MessageTest, OtherBytesStayAsTheyAre) { EXPECT_EQ(OneLine(" caf\xc3\xa9~"), " caf\xc3\xa9~"); }

TEST(MessageTest, QuotedNamesStayOnOneLine) { EXPECT_EQ(Quoted("a\nb"), "'a\\nb'"); }

TEST(MessageTest, ReasonsBeginInLowerCase) { EXPECT_EQ(ReasonOf(EACCES), "permission denied"); }

TEST(MessageTest, MissingFilesAndDirectoriesHaveOurOwnWords) {
  EXPECT_EQ(ReasonOf(ENOENT), "no such file or folder");
  EXPECT_EQ(ReasonOf(EISDIR), "is a folder");
}

TEST(MessageTest, OnlyOneIsSingular) {
  EXPECT_EQ(Counted(0, "link"), "0 links");
  EXPECT_EQ(Counted(1, "link"), "1 link");
  EXPECT_EQ(Counted(2, "link"), "2 links");
}

TEST(MessageTest, LargeNumbersHaveCommas) {
  EXPECT_EQ(WithCommas(0), "0");
  EXPECT_EQ(WithCommas(999), "999");
  EXPECT_EQ(WithCommas(1000), "1,000");
  EXPECT_EQ(WithCommas(999999), "999,999");
  EXPECT_EQ(WithCommas(1234567), "1,234,567");
}

}  // namespace
}  // namespace kestan_cli
