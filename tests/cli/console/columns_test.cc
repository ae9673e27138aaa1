// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/columns.h"

#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace kestan_cli {
namespace {

const std::string kBeijing = "\xe5\x8c\x97\xe4\xba\xac";                     // 北京
const std::string kAccent = "e\xcc\x81";                                     // e and U+0301
const std::string kGrin = "\xf0\x9f\x98\x80";                                // U+1F600
const std::string kHeart = "\xe2\x9d\xa4\xef\xb8\x8f";                       // with U+FE0F
const std::string kFlag = "\xf0\x9f\x87\xa9\xf0\x9f\x87\xaa";                // two letters
const std::string kCouple = "\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa9";  // with U+200D
const std::string kThai = "\xe0\xb8\x81\xe0\xb8\xb3\xe0\xb8\xa5\xe0\xb8\xb1\xe0\xb8\x87";  // กำลัง

TEST(ColumnsTest, WideCharactersTakeTwoAndMarksNone) {
  EXPECT_EQ(ColumnsOf(""), 0u);
  EXPECT_EQ(ColumnsOf("cat"), 3u);
  EXPECT_EQ(ColumnsOf("Z\xc3\xbcrich"), 6u);
  EXPECT_EQ(ColumnsOf(kBeijing), 4u);
  EXPECT_EQ(ColumnsOf("\xef\xbc\xa1"), 2u);  // a wide A
  EXPECT_EQ(ColumnsOf("\xef\xbd\xb1"), 1u);  // a narrow katakana
  EXPECT_EQ(ColumnsOf("\xed\x95\x9c"), 2u);  // a syllable of Hangul
  EXPECT_EQ(ColumnsOf(kAccent), 1u);
  EXPECT_EQ(ColumnsOf("\xe2\x80\x8b"), 0u);  // U+200B
  EXPECT_EQ(ColumnsOf(kThai), 4u);           // its last vowel stands above
}

TEST(ColumnsTest, EmojiTakeTwoOrWhatTheLargestTerminalGivesThem) {
  EXPECT_EQ(ColumnsOf(kGrin), 2u);
  EXPECT_EQ(ColumnsOf(kHeart), 2u);
  EXPECT_EQ(ColumnsOf(kFlag), 2u);
  EXPECT_EQ(ColumnsOf(kCouple), 4u);
}

TEST(ColumnsTest, LocaleOfTheUserDoesNotCount) {
  for (const char* locale : {"C", "C.UTF-8", "POSIX"}) {
    ASSERT_NE(setlocale(LC_ALL, locale), nullptr);
    EXPECT_EQ(ColumnsOf(kBeijing + kAccent + kGrin), 7u) << locale;
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), locale[0] == 'P' ? "C" : locale);
  }
}

TEST(ColumnsTest, WhatNobodyKnowsCountsAsWide) {
  EXPECT_EQ(ColumnsOf("\xcd\xb8"), 2u);          // U+0378, which is no character
  EXPECT_EQ(ColumnsOf("\xf4\x8f\xbf\xbf"), 2u);  // U+10FFFF
}

TEST(ColumnsTest, ClusterKeepsMarksAndJoinedCharacters) {
  EXPECT_EQ(FirstCluster(kAccent + "a").bytes, 3u);
  EXPECT_EQ(FirstCluster(kCouple + "a").bytes, kCouple.size());
  EXPECT_EQ(FirstCluster(kHeart + kHeart).bytes, kHeart.size());
  EXPECT_EQ(FirstCluster("\xcc\x81"
                         "a")
                .bytes,
            2u);  // a mark without a letter
}

TEST(ColumnsTest, TextThatFitsStaysWhole) {
  EXPECT_EQ(FittedStart("kitten", 6), "kitten");
  EXPECT_EQ(FittedEnd("kitten", 6), "kitten");
  EXPECT_EQ(FittedStart(kBeijing, 4), kBeijing);
  EXPECT_EQ(FittedStart("", 0), "");
}

TEST(ColumnsTest, LongerTextIsCutWithDots) {
  EXPECT_EQ(FittedStart("kittens", 6), "kit...");
  EXPECT_EQ(FittedEnd("kittens", 6), "...ens");
  EXPECT_EQ(FittedStart("kittens", 3), "...");
  EXPECT_EQ(FittedEnd("kittens", 2), "..");
  EXPECT_EQ(FittedStart("kittens", 0), "");
}

TEST(ColumnsTest, NoCharacterIsCutInTwo) {
  EXPECT_EQ(FittedStart(kBeijing + kBeijing, 6), kBeijing.substr(0, 3) + "...");
  EXPECT_EQ(FittedEnd(kBeijing + kBeijing, 6), "..." + kBeijing.substr(3));
  EXPECT_EQ(FittedStart(kAccent + kAccent + "tte", 4), kAccent + "...");
  EXPECT_EQ(FittedEnd("tte" + kAccent + kAccent, 4), "..." + kAccent);
}

TEST(ColumnsTest, LinesAreWrappedAtBlanks) {
  EXPECT_EQ(Wrapped("one two three", 7, 0), "one two\nthree");
  EXPECT_EQ(Wrapped("one two three", 6, 0), "one\ntwo\nthree");
  EXPECT_EQ(Wrapped("one two three", 13, 0), "one two three");
  EXPECT_EQ(Wrapped("", 5, 0), "");
}

TEST(ColumnsTest, LinesAfterTheFirstAreIndented) {
  EXPECT_EQ(Wrapped("one two three", 9, 2), "one two\n  three");
  EXPECT_EQ(Wrapped("  -a  one two", 9, 6), "  -a  one\n      two");
}

TEST(ColumnsTest, WordsThatAreTooLongStayWhole) {
  EXPECT_EQ(Wrapped("a kittens b", 4, 2), "a\n  kittens\n  b");
  EXPECT_EQ(Wrapped("kittens", 4, 2), "kittens");
  EXPECT_EQ(Wrapped(kBeijing + " " + kBeijing, 8, 0), kBeijing + "\n" + kBeijing);
}

TEST(ColumnsTest, WhatIsNoTerminalHasTheUsualColumns) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  EXPECT_EQ(ColumnsOfTerminal(ends[1]), 80u);
  close(ends[0]);
  close(ends[1]);
}

}  // namespace
}  // namespace kestan_cli
