// The checksum of a dump.
#ifndef KESTAN_MAINTENANCE_CRC64_H_
#define KESTAN_MAINTENANCE_CRC64_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// A cyclic redundancy check over 64 bits: the polynomial of ECMA-182, bits reflected, all ones at
// both ends. It changes with every burst of wrong bits that is at most 64 long.
class Crc64 {
 public:
  void Add(std::string_view bytes) {
    for (const char byte : bytes) {
      register_ = kTable[(register_ ^ static_cast<unsigned char>(byte)) & 0xff] ^ register_ >> 8;
    }
  }

  std::uint64_t Value() const { return ~register_; }

 private:
  using Table = std::array<std::uint64_t, 256>;

  static constexpr Table MakeTable() {
    constexpr std::uint64_t kPolynomial = 0xc96c5795d7870f42;
    Table table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
      std::uint64_t remainder = byte;
      for (int bit = 0; bit < 8; ++bit) {
        remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? kPolynomial : 0);
      }
      table[byte] = remainder;
    }
    return table;
  }

  static const Table kTable;

  std::uint64_t register_ = ~std::uint64_t{0};
};

inline constexpr Crc64::Table Crc64::kTable = Crc64::MakeTable();

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CRC64_H_
