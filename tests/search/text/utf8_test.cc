// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kestan::search {
namespace {

std::string Character(char32_t code) {
  std::string text;
  AppendCharacter(code, &text);
  return text;
}

TEST(Utf8Test, EveryCharacterIsOneOfItsBytes) {
  for (char32_t code = 0; code <= 0x10ffff; ++code) {
    if (code >= 0xd800 && code < 0xe000) continue;
    const std::string text = Character(code);
    ASSERT_EQ(CharacterBytes(text), text.size()) << static_cast<unsigned>(code);
    ASSERT_EQ(CharacterBytes(text + "x"), text.size());
  }
}

TEST(Utf8Test, QuotedBytesAreOneLineOfUtf8) {
  EXPECT_EQ(Quoted(""), "''");
  EXPECT_EQ(Quoted("a b~"), "'a b~'");
  EXPECT_EQ(Quoted("Z\xc3\xbcrich \xe6\x9d\xb1"), "'Z\xc3\xbcrich \xe6\x9d\xb1'");
  EXPECT_EQ(Quoted("a\nb\x1b[2J\x7f"), "'a\\x0ab\\x1b[2J\\x7f'");
  EXPECT_EQ(Quoted(std::string_view("a\0b", 3)), "'a\\x00b'");
  EXPECT_EQ(Quoted("\xff\xc3"), "'\\xff\\xc3'");
  EXPECT_EQ(Quoted("\xc2\x9b|\xc2\xa0"), "'\\xc2\\x9b|\xc2\xa0'");
}

TEST(Utf8Test, EveryTruncationIsNoCharacter) {
  for (const char32_t code : {0x80U, 0x7ffU, 0x800U, 0xffffU, 0x10000U, 0x10ffffU}) {
    const std::string text = Character(code);
    for (std::size_t bytes = 1; bytes < text.size(); ++bytes) {
      EXPECT_EQ(CharacterBytes(text.substr(0, bytes)), 0u);
      EXPECT_EQ(CharacterBytes(text.substr(0, bytes) + "x"), 0u);
    }
  }
}

TEST(Utf8Test, OtherEncodingsAreNoCharacters) {
  EXPECT_EQ(CharacterBytes("\x80"), 0u);
  EXPECT_EQ(CharacterBytes("\xc0\x80"), 0u);
  EXPECT_EQ(CharacterBytes("\xc1\xbf"), 0u);
  EXPECT_EQ(CharacterBytes("\xe0\x9f\xbf"), 0u);
  EXPECT_EQ(CharacterBytes("\xed\xa0\x80"), 0u);  // half of a pair of UTF-16
  EXPECT_EQ(CharacterBytes("\xf0\x8f\xbf\xbf"), 0u);
  EXPECT_EQ(CharacterBytes("\xf4\x90\x80\x80"), 0u);
  EXPECT_EQ(CharacterBytes("\xf5\x80\x80\x80"), 0u);
  EXPECT_EQ(CharacterBytes("\xff"), 0u);
}

TEST(Utf8Test, FirstByteAbove127IsFoundAtEveryPlace) {
  for (std::size_t at = 0; at < 40; ++at) {
    const std::string text = std::string(at, 'x') + "\x80" + std::string(20, 'x');
    EXPECT_EQ(FindNonAscii(text, 0), at);
    EXPECT_EQ(FindNonAscii(text, at / 2), at);
    EXPECT_EQ(FindNonAscii(text, at + 1), text.size());
  }
}

TEST(Utf8Test, FirstByteThatIsNotUtf8IsFound) {
  EXPECT_EQ(FindNonUtf8("a\u00fc\u20ac", 0), 6u);
  EXPECT_EQ(FindNonUtf8("a\u00fc\xfcx", 0), 3u);
  EXPECT_EQ(FindNonUtf8("a\u00fc\xc3", 0), 3u);
  EXPECT_EQ(FindNonUtf8("", 0), 0u);
}

TEST(IsUtf8Test, CharactersOfEveryLengthAreIn) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8(std::string("plain\n\x7f\0", 8)));
  EXPECT_TRUE(IsUtf8("\xc2\x80\xdf\xbf"));
  EXPECT_TRUE(IsUtf8("\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf"));
  EXPECT_TRUE(IsUtf8("\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"));
}

TEST(IsUtf8Test, OverlongFormsSurrogatesAndWhatIsTooHighAreNot) {
  for (const char* text :
       {"\xc0\x80", "\xc1\xbf", "\xe0\x9f\xbf", "\xf0\x8f\xbf\xbf", "\xed\xa0\x80", "\xed\xbf\xbf",
        "\xf4\x90\x80\x80", "\xf5\x80\x80\x80"}) {
    EXPECT_FALSE(IsUtf8(text)) << text;
  }
}

TEST(IsUtf8Test, BrokenCharactersAreNot) {
  for (const char* text : {"\x80", "\xbf", "\xc3", "\xc3x", "\xe2\x82", "\xe2\x82x", "\xe2(\xa1",
                           "\xf0\x9f\x98", "\xf0\x9f\x98x", "ok\xff"}) {
    EXPECT_FALSE(IsUtf8(text)) << text;
  }
}

}  // namespace
}  // namespace kestan::search
