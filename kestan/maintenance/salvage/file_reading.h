// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a whole file into memory, as far as the system can read it.
#ifndef KESTAN_MAINTENANCE_SALVAGE_FILE_READING_H_
#define KESTAN_MAINTENANCE_SALVAGE_FILE_READING_H_

#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// Reads the regular file at `path` into `*bytes`. Blocks of 512 bytes that cannot be read become
// zeros, and count in `*unreadable_bytes`. A mapping would be cheaper, but a signal would end the
// process where the disk cannot be read or another process cuts the file.
//   Returns  0, or the system's error number: also EFBIG for a file too large for any memory, and
//            EINVAL for anything but a regular file.
int ReadWholeFile(const char* path, String* bytes, std::uint64_t* unreadable_bytes);

// The bytes of an open file, mapped as gdbm maps the files that it only reads. As with gdbm, a
// signal ends the process where the disk cannot be read or another process cuts the file.
class MappedFile {
 public:
  // Maps the file of `descriptor`, which may be closed after that.
  explicit MappedFile(int descriptor);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  // Returns whether the system has mapped the file. An empty file is never mapped.
  bool is_mapped() const { return start_ != nullptr; }
  std::string_view bytes() const { return {static_cast<const char*>(start_), size_}; }

 private:
  void* start_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_SALVAGE_FILE_READING_H_
