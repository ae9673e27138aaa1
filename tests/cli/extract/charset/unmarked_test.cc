// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/unmarked.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

using std::string_literals::operator""s;

std::string Decoded(const std::string& bytes, const std::string& expected_note = "") {
  std::string note;
  std::string text = FromUnmarked(bytes, &note);
  EXPECT_EQ(note, expected_note);
  return text;
}

// "Of all the words of this letter, most are Russian" in so many words.
const std::string kKoi8 =
    "\xf7\xd3\xc5 \xd3\xc3\xc1\xd3\xd4\xcc\xc9\xd7\xd9\xc5 \xd3\xc5\xcd\xd8\xc9 "
    "\xd0\xcf\xc8\xcf\xd6\xc9 \xc4\xd2\xd5\xc7 \xce\xc1 \xc4\xd2\xd5\xc7\xc1";

TEST(UnmarkedTest, Koi8IsRecognised) {
  EXPECT_EQ(Decoded(kKoi8),
            "\u0412\u0441\u0435 \u0441\u0446\u0430\u0441\u0442\u043b\u0438\u0432\u044b\u0435 "
            "\u0441\u0435\u043c\u044c\u0438 \u043f\u043e\u0445\u043e\u0436\u0438 "
            "\u0434\u0440\u0443\u0433 \u043d\u0430 \u0434\u0440\u0443\u0433\u0430");
}

TEST(UnmarkedTest, ShiftJisIsRecognised) {
  std::string bytes;
  std::string expected;
  for (int i = 0; i < 10; ++i) {
    bytes += "\x82\xb1\x82\xea\x82\xcd\x93\xfa\x96\x7b\x8c\xea\x82\xc5\x82\xb7\x81\x42\n";
    expected += "\u3053\u308c\u306f\u65e5\u672c\u8a9e\u3067\u3059\u3002\n";
  }
  EXPECT_EQ(Decoded(bytes), expected);
}

TEST(UnmarkedTest, FewOtherBytesAreLatin1) {
  EXPECT_EQ(Decoded("Z\xfcrich"), "Z\u00fcrich");
  EXPECT_EQ(Decoded("Z\u00fcrich \xff Gen\u00e8ve"), "Z\u00fcrich \u00ff Gen\u00e8ve");
  EXPECT_EQ(Decoded("\xc4\xd6\xdc\xe4\xf6\xfc\xdf"), "\u00c4\u00d6\u00dc\u00e4\u00f6\u00fc\u00df");
}

TEST(UnmarkedTest, Iso2022IsRecognisedByItsEscapes) {
  EXPECT_EQ(Decoded("\x1b$B8cGZ$OG-$G$\"$k\x1b(B\n"),
            "\u543e\u8f29\u306f\u732b\u3067\u3042\u308b\n");
  EXPECT_EQ(Decoded("costs \x1b[1m$5\x1b[0m"), "costs \x1b[1m$5\x1b[0m");
}

TEST(UnmarkedTest, LettersOfDosAndOldMacsAreReported) {
  const std::string note = "its encoding is unknown, and it was read as Latin-1";
  Decoded("je me suis couch\x82 de bonne heure", note);
  Decoded("je me suis couch\x8e de bonne heure", note);
}

TEST(UnmarkedTest, SignsOfWindowsAreNotReported) {
  EXPECT_EQ(Decoded("l\x92\xe9t\xe9\x85 \x93oui\x94 \x97 non"),
            "l\u2019\u00e9t\u00e9\u2026 \u201coui\u201d \u2014 non");
}

TEST(UnmarkedTest, LongTextInLatin1StaysLatin1) {
  std::string bytes;
  std::string expected;
  for (int i = 0; i < 10; ++i) {
    bytes +=
        "Das M\xe4"
        "dchen und der J\xfcngling gr\xfc\xdf"
        "ten sich \xfc"
        "ber die Stra\xdf"
        "e.\n";
    expected +=
        "Das M\u00e4dchen und der J\u00fcngling gr\u00fc\u00dften sich \u00fc"
        "ber die Stra\u00df"
        "e.\n";
  }
  EXPECT_EQ(Decoded(bytes), expected);
}

TEST(UnmarkedTest, Utf8WithBrokenCharactersStaysUtf8) {
  std::string bytes;
  for (int i = 0; i < 20; ++i) bytes += "\u041f\u0440\u0438\u0432\u0435\u0442 \xff ";
  EXPECT_EQ(Decoded(bytes).substr(0, 12), "\u041f\u0440\u0438\u0432\u0435\u0442");
}

TEST(UnmarkedTest, Utf16WithoutAMarkIsRecognised) {
  EXPECT_EQ(MissingUtf16Mark("Z\0\xfc\0r\0\n\0"s), "\xff\xfe");
  EXPECT_EQ(MissingUtf16Mark("\0Z\0\xfc\0r\0\n"s), "\xfe\xff");
  EXPECT_EQ(MissingUtf16Mark("Z\0\x3d\xd8\x00\xde"s), "") << "a NUL on each side";
  EXPECT_EQ(MissingUtf16Mark("Z\0\x3d\xd8\x01\xde"s), "\xff\xfe");
  EXPECT_EQ(MissingUtf16Mark("\x42\x30\x44\x30\x46\x30\n\0"s), "\xff\xfe") << "Hiragana";
}

TEST(UnmarkedTest, OtherBytesAreNotUtf16) {
  for (const std::string& bytes :
       {""s, "text"s, "<p>text\0"s, "a\0b"s, "a\0b\0"s, "a\0b\0c\0d"s,
        "\xff\xfe"
        "a\0"s,
        "\0"s, "\0\0"s, "a\0\0b"s, "a\0\1\0"s, "a\0\x00\xd8"s, "a\0\x01\xdc"s, "a\0\xff\xff"s,
        "\x7f"
        "ELF\2\1\1\0"s}) {
    EXPECT_EQ(MissingUtf16Mark(bytes), "") << testing::PrintToString(bytes);
  }
}

}  // namespace
}  // namespace kestan_cli
