// The checksum of a dump.
#ifndef KESTAN_MAINTENANCE_DUMP_CRC64_H_
#define KESTAN_MAINTENANCE_DUMP_CRC64_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// Returns the remainder of each byte, followed by eight bits of zero.
constexpr std::array<std::uint64_t, 256> MakeCrc64Table() {
  constexpr std::uint64_t kPolynomial = 0xc96c5795d7870f42;
  std::array<std::uint64_t, 256> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    std::uint64_t remainder = byte;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? kPolynomial : 0);
    }
    table[byte] = remainder;
  }
  return table;
}

inline constexpr std::array<std::uint64_t, 256> kCrc64Table = MakeCrc64Table();

// A cyclic redundancy check over 64 bits: the polynomial of ECMA-182, bits reflected, all ones at
// both ends. It changes with every burst of wrong bits that is at most 64 long.
class Crc64 {
 public:
  void Add(std::string_view bytes) {
    for (const char byte : bytes) {
      register_ =
          kCrc64Table[(register_ ^ static_cast<unsigned char>(byte)) & 0xff] ^ register_ >> 8;
    }
  }

  std::uint64_t Value() const { return ~register_; }

 private:
  std::uint64_t register_ = ~std::uint64_t{0};
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DUMP_CRC64_H_
