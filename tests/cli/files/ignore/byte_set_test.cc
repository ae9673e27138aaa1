// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/byte_set.h"

#include <gtest/gtest.h>

#include <string>

namespace kestan_cli {
namespace {

// Returns the printable bytes of the set, "|" and how many bytes of the text it takes.
std::string Read(const std::string& text) {
  ByteSet set;
  const std::size_t taken = ReadByteSet(text, &set);
  std::string bytes;
  for (std::size_t i = ' '; i < 0x7f; ++i) {
    if (taken != 0 && set.test(i)) bytes += static_cast<char>(i);
  }
  return bytes + "|" + std::to_string(taken);
}

std::size_t CountOf(const std::string& text) {
  ByteSet set;
  return ReadByteSet(text, &set) == 0 ? 0 : set.count();
}

TEST(ByteSetTest, BytesAndRanges) {
  EXPECT_EQ(Read("[ab]c"), "ab|4");
  EXPECT_EQ(Read("[a-cx]"), "abcx|6");
  EXPECT_EQ(Read("[c-a]"), "c|5");
}

TEST(ByteSetTest, MinusAtAnEndIsItself) {
  EXPECT_EQ(Read("[-a]"), "-a|4");
  EXPECT_EQ(Read("[a-]"), "-a|4");
  EXPECT_EQ(Read("[a-c-e]"), "-abce|7");
}

TEST(ByteSetTest, BracketThatComesFirstIsItself) {
  EXPECT_EQ(Read("[]a]"), "]a|4");
  EXPECT_EQ(Read("[!]a]").find(']'), std::string::npos);
}

TEST(ByteSetTest, BackslashTakesTheNextByteAsItIs) {
  EXPECT_EQ(Read("[\\]a]"), "]a|5");
  EXPECT_EQ(Read("[a-\\c]"), "abc|6");
  EXPECT_EQ(Read("[\\"), "|0");
  EXPECT_EQ(Read("[a-\\"), "|0");
}

TEST(ByteSetTest, NegatedSetsHaveAllOthersButTheSlash) {
  EXPECT_EQ(CountOf("[!a]"), 254u);
  EXPECT_EQ(CountOf("[^a-c]"), 252u);
  EXPECT_EQ(CountOf("[/]"), 0u);
  EXPECT_EQ(CountOf("[.-0]"), 2u);
}

TEST(ByteSetTest, ClassesAreOfAscii) {
  EXPECT_EQ(Read("[[:digit:]x]"), "0123456789x|12");
  EXPECT_EQ(CountOf("[[:alnum:]]"), 62u);
  EXPECT_EQ(CountOf("[[:alpha:]]"), 52u);
  EXPECT_EQ(CountOf("[[:blank:]]"), 2u);
  EXPECT_EQ(CountOf("[[:cntrl:]]"), 33u);
  EXPECT_EQ(CountOf("[[:graph:]]"), 93u);  // without the slash
  EXPECT_EQ(CountOf("[[:lower:]]"), 26u);
  EXPECT_EQ(CountOf("[[:print:]]"), 94u);
  EXPECT_EQ(CountOf("[[:punct:]]"), 31u);
  EXPECT_EQ(CountOf("[[:space:]]"), 6u);
  EXPECT_EQ(CountOf("[[:upper:]]"), 26u);
  EXPECT_EQ(CountOf("[[:xdigit:]]"), 22u);
  EXPECT_EQ(Read("[[:no:]]"), "|0");
}

TEST(ByteSetTest, ClassThatIsNoneIsBytes) {
  EXPECT_EQ(Read("[[:a]"), ":[a|5");
  EXPECT_EQ(Read("[[:]"), ":[|4");
  EXPECT_EQ(Read("[[:digit:]-9]"), "-0123456789|13");  // a class begins no range
}

TEST(ByteSetTest, OpenSetsAreNone) {
  for (const char* text : {"[", "[!", "[]", "[!]", "[a", "[a-", "[[:", "[[:digit:]", "[\\]"}) {
    EXPECT_EQ(Read(text), "|0") << text;
  }
}

TEST(ByteSetTest, BytesAboveAsciiAreBytes) {
  EXPECT_EQ(CountOf("[\x80-\xff]"), 128u);
  EXPECT_EQ(CountOf(std::string("[\xff]")), 1u);
}

}  // namespace
}  // namespace kestan_cli
