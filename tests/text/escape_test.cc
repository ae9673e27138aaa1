// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/text/escape.h>

#include <gtest/gtest.h>

namespace kestan {
namespace {

TEST(EscapeTest, PrintableBytesStayAsTheyAre) { EXPECT_EQ(Escaped("a Z~!-:\""), "a Z~!-:\""); }

TEST(EscapeTest, OtherBytesAndTheBackslashAreEscaped) {
  EXPECT_EQ(Escaped(std::string_view("\0\n\x1f\x7f\x80\xff\\", 7)),
            "\\x00\\x0a\\x1f\\x7f\\x80\\xff\\x5c");
}

TEST(EscapeTest, EachByteIsPlainOrHasAnEscape) {
  for (int number = 0; number < 256; ++number) {
    const char byte = static_cast<char>(number);
    String escape;
    AppendEscape(byte, &escape);
    EXPECT_EQ(escape.size(), kEscapedByteBytes);
    EXPECT_EQ(Escaped({&byte, 1}), IsPlain(byte) ? String(1, byte) : escape) << number;
    EXPECT_EQ(IsPlain(byte), number >= 0x20 && number < 0x7f && number != '\\') << number;
  }
}

TEST(EscapeTest, NothingStaysNothing) { EXPECT_EQ(Escaped({}), ""); }

}  // namespace
}  // namespace kestan
