// SPDX-License-Identifier: GPL-3.0-or-later
// Where a record lies in a gdbm file.
#ifndef KESTAN_STORAGE_GDBM_RECORD_PLACE_H_
#define KESTAN_STORAGE_GDBM_RECORD_PLACE_H_

#include <cstdint>

namespace kestan {

// The key lies at `offset`, the value right after it. True as long as nobody changes the file.
// Whoever reads a value through it compares the key first.
struct RecordPlace {
  std::uint64_t offset = 0;  // in bytes; 0, where the header is, stands for no record
  std::uint32_t key_bytes = 0;
  std::uint32_t value_bytes = 0;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_GDBM_RECORD_PLACE_H_
