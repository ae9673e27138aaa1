// SPDX-License-Identifier: GPL-3.0-or-later
// The tables of the checksum.
#ifndef KESTAN_STORAGE_CHECKSUM_CRC64_TABLES_H_
#define KESTAN_STORAGE_CHECKSUM_CRC64_TABLES_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestan {

// That of ECMA-182, with bits reflected.
inline constexpr std::uint64_t kCrc64Polynomial = 0xc96c5795d7870f42;

// Bytes that are taken in one step, each through a table of its own.
inline constexpr std::size_t kCrc64Step = 16;

using Crc64Table = std::array<std::uint64_t, 256>;
using Crc64Tables = std::array<Crc64Table, kCrc64Step>;

// Returns the remainder of each byte that is followed by one byte of zero in the first table, by
// two in the second, and so on.
constexpr Crc64Tables MakeCrc64Tables() {
  Crc64Tables tables{};
  for (std::size_t byte = 0; byte < tables[0].size(); ++byte) {
    std::uint64_t remainder = byte;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? kCrc64Polynomial : 0);
    }
    tables[0][byte] = remainder;
  }
  for (std::size_t i = 1; i < tables.size(); ++i) {
    for (std::size_t byte = 0; byte < tables[i].size(); ++byte) {
      const std::uint64_t shorter = tables[i - 1][byte];
      tables[i][byte] = tables[0][shorter & 0xff] ^ shorter >> 8;
    }
  }
  return tables;
}

}  // namespace kestan

#endif  // KESTAN_STORAGE_CHECKSUM_CRC64_TABLES_H_
