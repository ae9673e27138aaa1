// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/decode.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kestan_cli {
namespace {

using std::string_literals::operator""s;

TEST(DecodeTest, Utf8StaysAsItIs) {
  EXPECT_EQ(DecodedText("Z\u00fcrich\n"), "Z\u00fcrich\n");
  EXPECT_EQ(DecodedText(""), "");
}

TEST(DecodeTest, MarkOfUtf8IsTakenOff) {
  EXPECT_EQ(DecodedText("\xef\xbb\xbfZ\u00fcrich"), "Z\u00fcrich");
  EXPECT_EQ(DecodedText("\xef\xbb\xbf"), "");
}

TEST(DecodeTest, Utf16IsReadInBothOrders) {
  EXPECT_EQ(DecodedText("\xff\xfeZ\0\xfc\0"s), "Z\u00fc");
  EXPECT_EQ(DecodedText("\xfe\xff\0Z\0\xfc"s), "Z\u00fc");
  EXPECT_EQ(DecodedText("\xff\xfe\xac\x20"s), "\u20ac");
}

TEST(DecodeTest, PairsOfUtf16AreOneCharacter) {
  EXPECT_EQ(DecodedText("\xff\xfe\x3d\xd8\x00\xde"s), "\U0001f600");
  EXPECT_EQ(DecodedText("\xff\xfe\xff\xdb\xff\xdf"s), "\U0010ffff");
}

TEST(DecodeTest, HalvesOfPairsAreUnknownCharacters) {
  EXPECT_EQ(DecodedText("\xff\xfe\x3d\xd8"s), "\ufffd");
  EXPECT_EQ(DecodedText("\xff\xfe\x3d\xd8x\0"s), "\ufffdx");
  EXPECT_EQ(DecodedText("\xff\xfe\x00\xde"s), "\ufffd");
}

TEST(DecodeTest, OddLastByteOfUtf16IsLeftOut) {
  EXPECT_EQ(DecodedText("\xff\xfeZ\0x"s), "Z");
  EXPECT_EQ(DecodedText("\xff\xfe"s), "");
}

TEST(DecodeTest, Utf16OfAnOddLengthIsBroken) {
  EXPECT_TRUE(IsBrokenUtf16("\xff\xfeZ\0x"s));
  EXPECT_TRUE(IsBrokenUtf16("\xfe\xff\0"s));
  EXPECT_FALSE(IsBrokenUtf16("\xff\xfeZ\0"s));
  EXPECT_FALSE(IsBrokenUtf16("odd"));
}

TEST(DecodeTest, Latin1IsRead) { EXPECT_EQ(DecodedText("Z\xfcrich \xe9"), "Z\u00fcrich \u00e9"); }

TEST(DecodeTest, SignsOfWindowsAreRead) {
  EXPECT_EQ(DecodedText("don\x92t \x80 \x9f"), "don\u2019t \u20ac \u0178");
  EXPECT_EQ(DecodedText("\x81"), "\u0081");
}

TEST(DecodeTest, OneBadByteDoesNotSpoilUtf8) {
  EXPECT_EQ(DecodedText("Z\u00fcrich \xff Gen\u00e8ve"), "Z\u00fcrich \u00ff Gen\u00e8ve");
}

TEST(DecodeTest, TextHasNoNul) {
  EXPECT_EQ(DecodedText("a\0b"s), std::nullopt);
  EXPECT_EQ(DecodedText("\xff\xfe\0\0"s), std::nullopt);
  EXPECT_EQ(DecodedText("\xef\xbb\xbf\0"s), std::nullopt);
}

}  // namespace
}  // namespace kestan_cli
