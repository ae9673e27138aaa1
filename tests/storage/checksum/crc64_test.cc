// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/checksum/crc64.h>
#include <kestan/storage/checksum/crc64_tables.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kestan_tests {
namespace {

std::uint64_t ChecksumOf(std::string_view bytes) {
  kestan::Crc64 checksum;
  checksum.Add(bytes);
  return checksum.Value();
}

TEST(Crc64Test, ChecksTheNineDigitsAsTheCatalogueDoes) {
  EXPECT_EQ(ChecksumOf("123456789"), 0x995dc9bbdf1939faU);
}

TEST(Crc64Test, IsZeroOfNothing) { EXPECT_EQ(ChecksumOf(""), 0u); }

TEST(Crc64Test, DependsOnTheBytesAloneAndNotOnHowTheyCame) {
  kestan::Crc64 checksum;
  checksum.Add("1234");
  checksum.Add("");
  checksum.Add("56789");
  EXPECT_EQ(checksum.Value(), ChecksumOf("123456789"));
}

std::uint64_t Reversed(std::uint64_t bits, int count) {
  std::uint64_t reversed = 0;
  for (int i = 0; i < count; ++i) reversed |= (bits >> i & 1) << (count - 1 - i);
  return reversed;
}

// The polynomial as ECMA-182 has it, and bits in the order of a division on paper.
std::uint64_t RemainderOfDivision(std::size_t byte, std::size_t zero_bytes) {
  constexpr std::uint64_t kPolynomial = 0x42f0e1eba9ea3693;
  std::uint64_t remainder = Reversed(byte, 8) << 56;
  for (std::size_t bit = 0; bit < 8 * zero_bytes; ++bit) {
    const bool divides = remainder >> 63 != 0;
    remainder = remainder << 1 ^ (divides ? kPolynomial : 0);
  }
  return Reversed(remainder, 64);
}

TEST(Crc64Test, TheTablesHoldRemaindersOfLongDivision) {
  kestan::Crc64Tables tables;
  tables = kestan::MakeCrc64Tables();  // now, and not while this is compiled
  for (std::size_t i = 0; i < tables.size(); ++i) {
    for (std::size_t byte = 0; byte < tables[i].size(); ++byte) {
      EXPECT_EQ(tables[i][byte], RemainderOfDivision(byte, i + 1)) << i << " " << byte;
    }
  }
}

// Byte after byte, as a division on paper takes them.
std::uint64_t PlainChecksumOf(std::string_view bytes) {
  std::uint64_t state = ~std::uint64_t{0};
  for (const char byte : bytes) {
    const std::size_t low = (state ^ static_cast<unsigned char>(byte)) & 0xff;
    state = RemainderOfDivision(low, 1) ^ state >> 8;
  }
  return ~state;
}

TEST(Crc64Test, OfEveryLengthAtEveryAlignmentIsThatOfItsBytesOneByOne) {
  std::string text;
  for (unsigned i = 0; i < 500; ++i) text += static_cast<char>(i * 77 + 200);
  for (std::size_t first = 0; first < 16; ++first) {
    for (std::size_t size = 0; first + size <= text.size(); ++size) {
      const std::string_view bytes = std::string_view(text).substr(first, size);
      ASSERT_EQ(ChecksumOf(bytes), PlainChecksumOf(bytes)) << first << " " << size;
    }
  }
}

TEST(Crc64Test, ChangesWithEveryBit) {
  const std::string text = "an index\xff";
  const std::uint64_t whole = ChecksumOf(text);
  for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
    std::string changed = text;
    changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ 1 << bit % 8);
    EXPECT_NE(ChecksumOf(changed), whole) << bit;
  }
}

}  // namespace
}  // namespace kestan_tests
