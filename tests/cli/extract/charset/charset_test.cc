// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/charset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

struct Example {
  const char* label;
  const char* bytes;
  const char* text;
};

TEST(CharsetTest, LabelsMeanWhatTheyMeanToBrowsers) {
  for (const Example& example : std::vector<Example>{
           {"gb2312", "\xe9\x46", "\u9555"},
           {"GBK", "\x81\x30\x81\x30", "\u0080"},
           {"shift_jis", "\x87\x40\xfb\xfc", "\u2460\u9ad9"},
           {"ms_kanji", "\x87\x40", "\u2460"},
           {"windows-31j", "\xb1", "\uff71"},
           {"us-ascii", "caf\xe9", "caf\u00e9"},
           {"iso-8859-1", "\x80\x93", "\u20ac\u201c"},
           {"latin1", "\x99", "\u2122"},
           {"iso-8859-9", "\xfd\x80", "\u0131\u20ac"},
           {"iso-8859-11", "\xa1\x80", "\u0e01\u20ac"},
           {"tis-620", "\xa1", "\u0e01"},
           {"ks_c_5601-1987", "\x8c\x63", "\ub620"},
           {"euc-kr", "\xb0\xa1", "\uac00"},
           {"big5", "\x87\x40", "\u43f0"},
           {"euc-jp", "\xad\xa1\x8e\xb1", "\u2460\uff71"},
           {"iso-2022-jp", "\x1b$B4A\x1b(Bx", "\u6f22x"},
           {"iso-8859-16", "\xaa\xa4z", "\u0218\u20acz"},
           {"iso-8859-8-i", "\xe0", "\u05d0"},
           {"koi8-ru", "\xa4", "\u0454"},
           {"x-mac-ukrainian", "\xbb", "\u0457"},
           {"utf8", "\u00fc\xff", "\u00fc\u00ff"},
       }) {
    EXPECT_EQ(FromCharset(example.label, example.bytes), example.text) << example.label;
  }
}

TEST(CharsetTest, LettersAndBlanksAroundLabelsDoNotMatter) {
  EXPECT_EQ(FromCharset(" \tKOI8-r\n", "\xcd"), "\u043c");
}

TEST(CharsetTest, LabelsThatCannotBeTrueAreNotBelieved) {
  for (const char* label :
       {"utf-16", "UTF-16LE", "utf-16be", "utf-32", "ucs-2", "ibm037", "scsu", "bocu-1", "nonsense",
        "", " ", "a b", "../../etc/passwd", "iso_2022,locale=ja", "x-user-defined", "lmbcs"}) {
    EXPECT_EQ(FromCharset(label, "text"), std::nullopt) << label;
  }
}

TEST(CharsetTest, LabelsThatOnlyIcuKnowsAreBelieved) {
  EXPECT_EQ(FromCharset("ibm850", "\x81"), "\u00fc");
  EXPECT_EQ(FromCharset("cp437", "\x81"), "\u00fc");
}

TEST(CharsetTest, EncodingsThatShiftAreBelievedWhereAllOfTheTextAgrees) {
  EXPECT_EQ(FromCharset("utf-7", "Z+APw-rich"), "Z\u00fcrich");
  EXPECT_EQ(FromCharset("utf-7", "Z+APw-rich caf\xe9"), std::nullopt);
  EXPECT_EQ(FromCharset("hz-gb-2312", "~{VPND~}"), "\u4e2d\u6587");
  EXPECT_EQ(FromCharset("hz-gb-2312", "~{VPND~} \xe9"), std::nullopt);
}

TEST(CharsetTest, AsciiAfterALeadByteStays) {
  EXPECT_EQ(FromCharset("gbk", "one \xff two"), "one \ufffd two");
  EXPECT_EQ(FromCharset("euc-jp", "\xb0x"), "\ufffdx");
  EXPECT_EQ(FromCharset("shift_jis", "one\x81"), "one\ufffd");
  EXPECT_EQ(FromCharset("gb18030", "\x81\x30x"), "\ufffd0x");
}

TEST(CharsetTest, PairsOfUtf16AreOneCharacterWhereverChunksEnd) {
  for (std::size_t ahead = 4090; ahead < 4100; ++ahead) {
    const std::string start(ahead, 'x');
    EXPECT_EQ(FromCharset("gb18030", start + "\x94\x39\xfc\x36y"), start + "\U0001f600y");
  }
}

TEST(CharsetTest, Latin1IsKnownUnderAllItsNames) {
  for (const char* label : {"iso-8859-1", "US-ASCII", "latin1", "windows-1252"}) {
    EXPECT_TRUE(IsLatin1Label(label)) << label;
  }
  EXPECT_FALSE(IsLatin1Label("iso-8859-15"));
  EXPECT_FALSE(IsLatin1Label("nonsense"));
}

}  // namespace
}  // namespace kestan_cli
