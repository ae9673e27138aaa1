// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/latin1.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

TEST(Utf8OrLatin1Test, Utf8StaysAsItIs) {
  EXPECT_EQ(Utf8OrLatin1(""), "");
  EXPECT_EQ(Utf8OrLatin1("Z\u00fcrich"), "Z\u00fcrich");
}

TEST(Utf8OrLatin1Test, OnlyOtherBytesAreConverted) {
  EXPECT_EQ(Utf8OrLatin1("\xff"), "\u00ff");
  EXPECT_EQ(Utf8OrLatin1("Z\u00fcrich \xfc \xc3"), "Z\u00fcrich \u00fc \u00c3");
}

TEST(Utf8OrLatin1Test, WindowsHasSignsWhereLatin1HasControls) {
  EXPECT_EQ(Utf8OrLatin1("\x80\x9f"), "\u20ac\u0178");
  EXPECT_EQ(Utf8OrLatin1("\x81\xa0"), "\u0081\u00a0");
}

TEST(Utf8OrAllLatin1Test, TextThatIsNotUtf8IsLatin1) {
  bool was_latin1 = false;
  EXPECT_EQ(Utf8OrAllLatin1("caf\xc3\xa9", &was_latin1), "caf\xc3\xa9");
  EXPECT_FALSE(was_latin1);
  EXPECT_EQ(Utf8OrAllLatin1("caf\xe9 \x80\xbf\xc0\xff", &was_latin1),
            "caf\xc3\xa9 \xc2\x80\xc2\xbf\xc3\x80\xc3\xbf");
  EXPECT_TRUE(was_latin1);
  Utf8OrAllLatin1("plain", &was_latin1);
  EXPECT_TRUE(was_latin1);
}

}  // namespace
}  // namespace kestan_cli
