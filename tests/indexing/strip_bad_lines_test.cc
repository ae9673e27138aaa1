// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::StripBadLines of kestan/indexing/strip.cc.
#include <kestan/kestan.h>

#include "tests/indexing/strip_block.h"

namespace kestan_tests {
namespace {

Stripped BadLines(std::string_view text) { return StripInPlace(text, 0, Kestan::StripBadLines); }

// A line of `length` bytes that begins with `first` and holds no white space.
std::string Line(char first, std::size_t length, const char* end = "\n") {
  return first + std::string(length - 1, 'x') + end;
}

// The first line of a uuencoded block, and one of a base64 block.
const std::string kUuencoded = Line('M', 61);
const std::string kEncoded = Line('a', 72);

TEST(StripBadLinesTest, EmptyTextWritesNothing) { EXPECT_EQ(BadLines("").length, 0); }

TEST(StripBadLinesTest, PlainLinesStayAsTheyAre) {
  const Stripped result = BadLines("one\r\n\ntwo words\nMore");
  EXPECT_EQ(result.length, 20);
  EXPECT_EQ(result.buffer, "one\r\n\ntwo words\nMore");
}

TEST(StripBadLinesTest, NoTerminatorIsWritten) {
  const Stripped result = BadLines(kUuencoded + "cat\n");
  EXPECT_EQ(result.text, "\ncat\n");
  EXPECT_EQ(result.buffer.at(5), 'x');
}

TEST(StripBadLinesTest, UuencodedBlockIsBlankedToItsLastLineWithM) {
  EXPECT_EQ(BadLines(kUuencoded + kUuencoded + "Mshort\nM\nend\n").text, "\n\n\n\nend\n");
}

TEST(StripBadLinesTest, UuencodedBlockEndsAtTheFirstOtherLine) {
  EXPECT_EQ(BadLines(kUuencoded + "end\nMother\n").text, "\nend\nMother\n");
  EXPECT_EQ(BadLines(kUuencoded + "\nMother\n").text, "\n\nMother\n");
}

TEST(StripBadLinesTest, OnlyALineOf61BytesOpensAUuencodedBlock) {
  EXPECT_EQ(BadLines(Line('M', 60)).text, Line('M', 60));
  EXPECT_EQ(BadLines(Line('M', 61)).text, "\n");
  EXPECT_EQ(BadLines(Line('M', 62)).text, Line('M', 62));
}

TEST(StripBadLinesTest, OnlyALineWithMOpensAUuencodedBlock) {
  EXPECT_EQ(BadLines(Line('N', 61)).text, Line('N', 61));
  EXPECT_EQ(BadLines(Line('m', 61)).text, Line('m', 61));
}

TEST(StripBadLinesTest, UuencodedLineMayHoldBlanks) {
  EXPECT_EQ(BadLines("M" + std::string(60, ' ') + "\n").text, "\n");
}

TEST(StripBadLinesTest, CarriageReturnsAreNotCounted) {
  EXPECT_EQ(BadLines(Line('M', 61, "\r\n")).text, "\n");
  EXPECT_EQ(BadLines(Line('M', 30, "\r") + Line('M', 31)).text, "\n");
  EXPECT_EQ(BadLines(Line('M', 60, "\r\n")).text, Line('M', 60, "\r\n"));
}

TEST(StripBadLinesTest, CarriageReturnCanBeTheFirstByteOfALine) {
  EXPECT_EQ(BadLines("\r" + kUuencoded).text, "\r" + kUuencoded);
  EXPECT_EQ(BadLines(kUuencoded + "\rM\n").text, "\n\rM\n");
}

// Once a line was blanked, what opens a uuencoded block is the byte where the next line will go.
TEST(StripBadLinesTest, ByteLeftOverFromABlankedLineOpensABlock) {
  EXPECT_EQ(BadLines("\x80M\n" + Line('X', 61) + "Mother\n").text, "\n\n\n");
}

TEST(StripBadLinesTest, ByteLeftOverFromABlankedLineHidesABlock) {
  EXPECT_EQ(BadLines("\x80x\n" + kUuencoded).text, "\n" + kUuencoded);
}

TEST(StripBadLinesTest, EncodedBlockIsBlankedUntilALineWithWhiteSpace) {
  EXPECT_EQ(BadLines(kEncoded + kEncoded + "abc\nabc=\ntwo words\nabc\n").text,
            "\n\n\n\ntwo words\nabc\n");
}

TEST(StripBadLinesTest, EncodedBlockEndsAtALineWithADash) {
  EXPECT_EQ(BadLines(kEncoded + "-abc\nabc\n").text, "\n-abc\nabc\n");
}

TEST(StripBadLinesTest, EncodedBlockGoesOnThroughEmptyLines) {
  EXPECT_EQ(BadLines(kEncoded + "\nabc\n\r\nabc\n").text, "\n\n\n\n\n");
}

TEST(StripBadLinesTest, OnlyALineOf72BytesOpensAnEncodedBlock) {
  EXPECT_EQ(BadLines(Line('a', 71) + "abc\n").text, Line('a', 71) + "abc\n");
  EXPECT_EQ(BadLines(Line('a', 72) + "abc\n").text, "\n\n");
  EXPECT_EQ(BadLines(Line('a', 73) + "abc\n").text, Line('a', 73) + "abc\n");
}

TEST(StripBadLinesTest, WhiteSpaceKeepsALineOf72Bytes) {
  for (const char* space : {" ", "\t", "\v", "\f"}) {
    const std::string line = Line('a', 35, space) + Line('a', 36);
    EXPECT_EQ(BadLines(line + "abc\n").text, line + "abc\n");
  }
}

TEST(StripBadLinesTest, CarriageReturnIsNoWhiteSpace) {
  EXPECT_EQ(BadLines(Line('a', 72, "\r\n") + "abc\r\nabc\n").text, "\n\n\n");
}

TEST(StripBadLinesTest, DashLineOf72BytesOpensABlockAgain) {
  EXPECT_EQ(BadLines(kEncoded + Line('-', 72) + "abc\n").text, "\n\n\n");
}

TEST(StripBadLinesTest, EncodedBlockGoesOnAfterUuencodedLines) {
  // The blanked first line leaves 'M' where the next line goes, so that the next one opens a block.
  const std::string encoded = "aM" + std::string(70, 'x') + "\n";
  EXPECT_EQ(BadLines(encoded + kUuencoded + "Mmm mmm\nabc\ntwo words\nabc\n").text,
            "\n\n\n\ntwo words\nabc\n");
}

TEST(StripBadLinesTest, LineWithAHighByteIsBlanked) {
  EXPECT_EQ(BadLines("cat \x80 dog\ncat\n").text, "\ncat\n");
  EXPECT_EQ(BadLines("cat \xff\n\xe4\n").text, "\n\n");
  EXPECT_EQ(BadLines("cat \x7f dog\n").text, "cat \x7f dog\n");
}

TEST(StripBadLinesTest, HighByteLeavesABlockOpen) {
  EXPECT_EQ(BadLines(kUuencoded + "caf\xe9 au lait\nMore\n").text, "\n\n\n");
  EXPECT_EQ(BadLines(kEncoded + "caf\xe9 au lait\nabc\n").text, "\n\n\n");
}

TEST(StripBadLinesTest, HighByteOpensNoBlock) {
  const std::string uuencoded = "M\xe9" + std::string(59, 'x') + "\n";
  const std::string encoded = "a\xe9" + std::string(70, 'x') + "\n";
  EXPECT_EQ(BadLines(uuencoded + "Mother\n").text, "\nMother\n");
  EXPECT_EQ(BadLines(encoded + "abc\n").text, "\nabc\n");
}

TEST(StripBadLinesTest, LastLineGainsALineFeedWhenItIsBlanked) {
  EXPECT_EQ(BadLines("caf\xe9").text, "\n");
  EXPECT_EQ(BadLines("\xe9").buffer, "\n");
  EXPECT_EQ(BadLines("cat\n" + Line('a', 72, "")).text, "cat\n\n");
}

TEST(StripBadLinesTest, LastLineWithoutLineFeedStaysWithoutOne) {
  EXPECT_EQ(BadLines("\xe9\ncat").text, "\ncat");
}

}  // namespace
}  // namespace kestan_tests
