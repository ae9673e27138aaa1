// SPDX-License-Identifier: GPL-3.0-or-later
// Datums as byte strings: their ordering code, order and equality.
#include <kestan/storage/dbdatum.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

static_assert(std::is_standard_layout_v<DBDatum>);
static_assert(offsetof(DBDatum, data) == 0);
static_assert(offsetof(DBDatum, data) < offsetof(DBDatum, size));
static_assert(offsetof(DBDatum, size) < offsetof(DBDatum, code));
static_assert(offsetof(DBDatum, code) < offsetof(DBDatum, refs));
static_assert(offsetof(DBDatum, refs) < offsetof(DBDatum, dirty));
static_assert(std::is_same_v<decltype(DBDatum::size), std::uint32_t>);
static_assert(std::is_same_v<decltype(DBDatum::code), std::uint32_t>);
static_assert(std::is_same_v<decltype(DBDatum::refs), std::int32_t>);
static_assert(sizeof(DBDatum::dirty) == 1);

// Asks for the code of a datum whose memory ends with its bytes.
std::uint32_t CodeOf(std::string_view bytes) { return Counted(bytes).ptr->CalcCode(); }

bool Less(std::string_view left, std::string_view right) { return Datum(left) < Datum(right); }

bool Equal(std::string_view left, std::string_view right) { return Datum(left) == Datum(right); }

TEST(DBDatumTest, StartsUncountedCleanAndWithoutCode) {
  const char bytes[] = "abc";
  const DBDatum datum(bytes, 2);
  EXPECT_EQ(datum.data, bytes);
  EXPECT_EQ(datum.size, 2u);
  EXPECT_EQ(datum.code, 0u);
  EXPECT_EQ(datum.refs, -1);
  EXPECT_FALSE(datum.dirty);
}

TEST(DBDatumTest, ADefaultOneIsEmpty) {
  const DBDatum datum;
  EXPECT_EQ(datum.data, nullptr);
  EXPECT_EQ(datum.size, 0u);
  EXPECT_EQ(datum.code, 0u);
  EXPECT_EQ(datum.refs, -1);
  EXPECT_FALSE(datum.dirty);
}

TEST(DBDatumTest, CodeIsTheFirstFourBytesWithTheFirstOnTop) {
  EXPECT_EQ(CodeOf("\x01\x02\x03\x04"), 0x01020304u);
  EXPECT_EQ(CodeOf("\x01\x02\x03\x04\x05"), 0x01020304u);
  EXPECT_EQ(CodeOf("\xff\xfe\xfd\xfc"), 0xfffefdfcu);
}

TEST(DBDatumTest, CodeOfFewerBytesEndsInZeros) {
  EXPECT_EQ(CodeOf("\x01\x02\x03"), 0x01020300u);
  EXPECT_EQ(CodeOf("\x01\x02"), 0x01020000u);
  EXPECT_EQ(CodeOf("\x01"), 0x01000000u);
}

TEST(DBDatumTest, CodeTakesNoByteBeyondTheSize) {
  const char bytes[] = "\x01\x02\x03\x04\x05";
  EXPECT_EQ(DBDatum(bytes, 3).CalcCode(), 0x01020300u);
  EXPECT_EQ(DBDatum(bytes, 2).CalcCode(), 0x01020000u);
  EXPECT_EQ(DBDatum(bytes, 1).CalcCode(), 0x01000000u);
  EXPECT_EQ(DBDatum(bytes, 0).CalcCode(), 0u);
}

TEST(DBDatumTest, CodeOfNoBytesIsZeroEvenWithoutMemory) {
  EXPECT_EQ(DBDatum().CalcCode(), 0u);
  EXPECT_EQ(CodeOf(""), 0u);
}

TEST(DBDatumTest, CalculatingTheCodeDoesNotStoreIt) {
  const DBDatum datum = Datum("word");
  EXPECT_NE(datum.CalcCode(), 0u);
  EXPECT_EQ(datum.code, 0u);
}

TEST(DBDatumTest, ThePrefixComesBeforeTheLongerOne) {
  EXPECT_TRUE(Less("ab", "ab\0"sv));
  EXPECT_TRUE(Less("ab", "abc"));
  EXPECT_FALSE(Less("ab\0"sv, "ab"));
  EXPECT_FALSE(Less("abc", "ab"));
  EXPECT_TRUE(Less("abcdefgh", "abcdefghi"));
}

TEST(DBDatumTest, TheCodeDecidesBeforeTheLength) {
  EXPECT_TRUE(Less("abzzz", "b"));
  EXPECT_FALSE(Less("b", "abzzz"));
}

TEST(DBDatumTest, BytesBeyondTheCodeDecideWhereCodesAgree) {
  EXPECT_TRUE(Less("wordA", "wordB"));
  EXPECT_FALSE(Less("wordB", "wordA"));
  EXPECT_TRUE(Less("wordAZ", "wordB"));
}

TEST(DBDatumTest, BytesAbove127ComeLast) {
  EXPECT_TRUE(Less("\x7f", "\x80"));
  EXPECT_FALSE(Less("\xff", "z"));
  EXPECT_TRUE(Less("word\x7f", "word\x80"));
  EXPECT_FALSE(Less("word\xff", "wordz"));
}

TEST(DBDatumTest, TheEmptyOneComesFirst) {
  EXPECT_TRUE(DBDatum() < Datum("\0"sv));
  EXPECT_FALSE(Datum("\0"sv) < DBDatum());
  EXPECT_FALSE(DBDatum() < DBDatum());
}

TEST(DBDatumTest, IsNotBeforeItself) {
  EXPECT_FALSE(Less("word", "word"));
  EXPECT_FALSE(Less("\0\0"sv, "\0\0"sv));
}

TEST(DBDatumTest, ComparingKeepsBothCodes) {
  const DBDatum left = Datum("left");
  const DBDatum right = Datum("right");
  EXPECT_TRUE(left < right);
  EXPECT_EQ(left.code, left.CalcCode());
  EXPECT_EQ(right.code, right.CalcCode());
}

TEST(DBDatumTest, ACodeThatIsKeptIsNotCalculatedAgain) {
  const DBDatum left = Datum("zebra");
  const DBDatum right = Datum("ant");
  left.code = 1;
  EXPECT_TRUE(left < right);
  EXPECT_EQ(left.code, 1u);
}

TEST(DBDatumTest, EqualsTheSameBytesElsewhere) {
  EXPECT_TRUE(Equal("longer than four", std::string("longer than four")));
  EXPECT_FALSE(Equal("longer than four", "longer than fouR"));
  EXPECT_FALSE(Equal("aord", "word"));
  EXPECT_TRUE(Equal("", ""));
  EXPECT_TRUE(DBDatum() == DBDatum());
}

TEST(DBDatumTest, OfAnotherSizeIsNeverEqual) {
  EXPECT_FALSE(Equal("ab", "abc"));
  EXPECT_FALSE(Equal("ab", "ab\0"sv));
  EXPECT_FALSE(Equal("", "\0"sv));
}

TEST(DBDatumTest, EqualityKeepsCodesOnlyWhereSizesAgree) {
  const DBDatum word = Datum("word");
  const DBDatum longer = Datum("words");
  const DBDatum other = Datum("bird");
  EXPECT_FALSE(word == longer);
  EXPECT_EQ(word.code, 0u);
  EXPECT_EQ(longer.code, 0u);
  EXPECT_FALSE(word == other);
  EXPECT_EQ(word.code, word.CalcCode());
  EXPECT_EQ(other.code, other.CalcCode());
}

TEST(DBDatumTest, DifferentCodesMeanUnequal) {
  const DBDatum left = Datum("word");
  const DBDatum right = Datum("word");
  left.code = 1;
  EXPECT_FALSE(left == right);
}

// Every string of up to five of the bytes 0, 'a' and 255: the code's edge lies within.
std::vector<std::string> ShortStrings() {
  std::vector<std::string> strings = {""};
  for (std::size_t i = 0; strings[i].size() < 5; ++i) {
    for (char byte : {'\0', 'a', '\xff'}) strings.push_back(strings[i] + byte);
  }
  return strings;
}

TEST(DBDatumTest, OrderAndEqualityAreThoseOfStandardStrings) {
  const std::vector<std::string> strings = ShortStrings();
  for (const std::string& left : strings) {
    for (const std::string& right : strings) {
      ASSERT_EQ(Less(left, right), left < right)
          << testing::PrintToString(left) << " and " << testing::PrintToString(right);
      ASSERT_EQ(Equal(left, right), left == right);
    }
  }
}

}  // namespace
}  // namespace kestan_tests
