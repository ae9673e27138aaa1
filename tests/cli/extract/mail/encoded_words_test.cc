// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/encoded_words.h"

#include <gtest/gtest.h>

namespace kestan_cli {
namespace {

TEST(EncodedWordsTest, BothEncodingsAreDecoded) {
  EXPECT_EQ(DecodedHeader("=?koi8-r?B?8NLJ18XU?="), "\u041f\u0440\u0438\u0432\u0435\u0442");
  EXPECT_EQ(DecodedHeader("=?ISO-8859-1?q?Z=FCrich_1?= x"), "Z\u00fcrich 1 x");
  EXPECT_EQ(DecodedHeader("=?utf-8*de?Q?=C3=BC?="), "\u00fc");
}

TEST(EncodedWordsTest, CharacterMayBeSplitBetweenWords) {
  EXPECT_EQ(DecodedHeader("=?utf-8?B?w7w=?=\n =?utf-8?q?=C3?= =?utf-8?q?=BC?="), "\u00fc\u00fc");
}

TEST(EncodedWordsTest, BlanksStayBesidePlainText) {
  EXPECT_EQ(DecodedHeader("a =?utf-8?q?b?= c =?utf-8?q?d?= =?koi8-r?q?e?= <x@y>"),
            "a b c de <x@y>");
}

TEST(EncodedWordsTest, OtherTextStays) {
  for (const char* text : {"", "=?", "a =?x", "=?utf-8?b", "=?utf-8?b?",
                           "=?utf-8?x?a?=", "=??b?a?=", "=?a b?q?c?=", "50 =?"}) {
    EXPECT_EQ(DecodedHeader(text), text);
  }
  EXPECT_EQ(DecodedHeader("=?utf-8?q?a=?="), "a=");
  EXPECT_EQ(DecodedHeader("=?utf-8?q?=4?="), "=4");
}

TEST(EncodedWordsTest, BytesWithoutAnEncodingAreUtf8OrLatin1) {
  EXPECT_EQ(DecodedHeader("Z\xfcrich \u00fc"), "Z\u00fcrich \u00fc");
}

TEST(EncodedWordsTest, LatinOneThatIsUtf8IsUtf8) {
  EXPECT_EQ(FromMailCharset("iso-8859-1", "\u00fc"), "\u00fc");
  EXPECT_EQ(FromMailCharset("iso-8859-1", "\xfc"), "\u00fc");
  EXPECT_EQ(FromMailCharset("windows-1251", "\xfc"), "\u044c");
  EXPECT_EQ(FromMailCharset("unheard-of", "\u00fc"), "\u00fc");
}

}  // namespace
}  // namespace kestan_cli
