// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/numbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace kestan::search {
namespace {

std::string Varint(std::uint64_t number) {
  std::string bytes;
  AppendVarint(number, &bytes);
  return bytes;
}

TEST(NumbersTest, AreLittleEndian) {
  std::string bytes;
  AppendNumber(std::uint16_t{0x8001}, &bytes);
  AppendNumber(std::uint32_t{0x80000002}, &bytes);
  AppendNumber(std::uint64_t{0x8000000000000003}, &bytes);
  EXPECT_EQ(bytes, std::string("\1\x80\2\0\0\x80\3\0\0\0\0\0\0\x80", 14));
  EXPECT_EQ(NumberAt<std::uint16_t>(bytes.data()), 0x8001u);
  EXPECT_EQ(NumberAt<std::uint32_t>(bytes.data() + 2), 0x80000002u);
  EXPECT_EQ(NumberAt<std::uint64_t>(bytes.data() + 6), 0x8000000000000003u);
}

TEST(NumbersTest, VarintsHaveSevenBitsAByte) {
  EXPECT_EQ(Varint(0), std::string(1, '\0'));
  EXPECT_EQ(Varint(127), "\x7f");
  EXPECT_EQ(Varint(128), "\x80\x01");
  EXPECT_EQ(Varint(16384), "\x80\x80\x01");
}

TEST(ByteReaderTest, ReadsVarintsOfEveryLength) {
  for (unsigned bit = 0; bit < 64; ++bit) {
    for (const std::uint64_t number : {(std::uint64_t{1} << bit) - 1, std::uint64_t{1} << bit}) {
      const std::string bytes = Varint(number) + "x";
      ByteReader reader(bytes);
      std::uint64_t read = 0;
      ASSERT_TRUE(reader.Varint(&read));
      EXPECT_EQ(read, number);
      EXPECT_EQ(reader.rest(), 1u);
    }
  }
}

TEST(ByteReaderTest, VarintThatDoesNotEndIsAnError) {
  for (const std::uint64_t number : {std::uint64_t{1}, std::uint64_t{300}, UINT64_MAX}) {
    const std::string bytes = Varint(number);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      ByteReader reader(std::string_view(bytes).substr(0, size));
      std::uint64_t read = 0;
      EXPECT_FALSE(reader.Varint(&read));
    }
  }
}

TEST(ByteReaderTest, VarintThatDoesNotFitIsAnError) {
  std::uint32_t small = 0;
  EXPECT_TRUE(ByteReader(Varint(UINT32_MAX)).Varint(&small));
  EXPECT_EQ(small, UINT32_MAX);
  EXPECT_FALSE(ByteReader(Varint(std::uint64_t{UINT32_MAX} + 1)).Varint(&small));
  std::uint64_t large = 0;
  EXPECT_FALSE(ByteReader(std::string(9, '\xff') + "\2").Varint(&large));
  large = 0;
  EXPECT_FALSE(ByteReader(std::string(10, '\x80') + "\1").Varint(&large));
}

TEST(ByteReaderTest, ReadsBytesThatAreThere) {
  ByteReader reader("abc");
  std::string_view bytes;
  EXPECT_FALSE(reader.Bytes(4, &bytes));
  EXPECT_FALSE(reader.Bytes(UINT64_MAX, &bytes));
  EXPECT_TRUE(reader.Bytes(2, &bytes));
  EXPECT_EQ(bytes, "ab");
  EXPECT_TRUE(reader.Bytes(1, &bytes));
  EXPECT_TRUE(reader.Bytes(0, &bytes));
  EXPECT_FALSE(reader.Bytes(1, &bytes));
  EXPECT_FALSE(ByteReader().Bytes(1, &bytes));
}

}  // namespace
}  // namespace kestan::search
