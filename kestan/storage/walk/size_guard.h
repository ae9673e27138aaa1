// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps a small file from filling the memory.
#ifndef KESTAN_STORAGE_WALK_SIZE_GUARD_H_
#define KESTAN_STORAGE_WALK_SIZE_GUARD_H_

#include <gdbm.h>
#include <kestan/storage/database.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// Detects records that share their bytes. In a valid file they do not, so that all of them together
// have no more bytes than the file. In a file made to do harm, they may have thousands of times as
// many.
class SizeGuard {
 public:
  // Borrows `store`, which is open.
  explicit SizeGuard(const Database& store) : store_(store) {}

  // Counts a record, or a key alone, of `bytes` bytes that was not counted before.
  //   Returns  0, or gdbm's number for a damaged file if the records have more bytes than it has.
  int Count(std::size_t bytes) {
    counted_ += bytes;
    if (counted_ <= file_bytes_) return 0;
    file_bytes_ = static_cast<std::uint64_t>(store_.FileBytes());  // a flush may have made it grow
    return counted_ <= file_bytes_ ? 0 : GDBM_BAD_HASH_TABLE;
  }

 private:
  const Database& store_;
  std::uint64_t counted_ = 0;
  std::uint64_t file_bytes_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_WALK_SIZE_GUARD_H_
