// SPDX-License-Identifier: GPL-3.0-or-later
// The checksum of dumps and of the files of an index.
#ifndef KESTAN_STORAGE_CHECKSUM_CRC64_H_
#define KESTAN_STORAGE_CHECKSUM_CRC64_H_

#include <kestan/storage/export.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// A cyclic redundancy check over 64 bits: the polynomial of ECMA-182, bits reflected, all ones at
// both ends. It changes with every burst of wrong bits that is at most 64 long.
class KESTAN_EXPORT Crc64 {
 public:
  void Add(std::string_view bytes);

  // Returns the checksum of all bytes so far.
  std::uint64_t Value() const { return ~register_; }

 private:
  std::uint64_t register_ = ~std::uint64_t{0};
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DUMP_CRC64_H_
