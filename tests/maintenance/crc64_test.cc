#include <gtest/gtest.h>

#include "kestan/maintenance/crc64.h"

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
