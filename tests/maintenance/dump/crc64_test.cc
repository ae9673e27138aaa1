#include <kestan/maintenance/dump/crc64.h>

#include <gtest/gtest.h>

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
TEST(Crc64Test, TheTableHoldsRemaindersOfLongDivision) {
  constexpr std::uint64_t kPolynomial = 0x42f0e1eba9ea3693;
  std::array<std::uint64_t, 256> table;
  table = kestan::MakeCrc64Table();  // now, and not while this is compiled
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    std::uint64_t remainder = Reversed(byte, 8) << 56;
    for (int bit = 0; bit < 8; ++bit) {
      const bool divides = remainder >> 63 != 0;
      remainder = remainder << 1 ^ (divides ? kPolynomial : 0);
    }
    EXPECT_EQ(Reversed(table[byte], 64), remainder) << byte;
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
