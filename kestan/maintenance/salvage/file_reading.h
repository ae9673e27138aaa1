// A whole file in memory, as much of it as the system gives.
#ifndef KESTAN_MAINTENANCE_SALVAGE_FILE_READING_H_
#define KESTAN_MAINTENANCE_SALVAGE_FILE_READING_H_

#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

// Reads the regular file at `path` into `*bytes`. A mapping would be cheaper, but the process would
// end where the disk cannot be read or the file is cut meanwhile; here, blocks of 512 bytes that
// cannot be read become zeros, and count in `*unreadable_bytes`.
//   Returns  0, or the system's error number: also EFBIG for a file that no memory could hold, and
//            EINVAL for what is no regular file.
int ReadWholeFile(const char* path, String* bytes, std::uint64_t* unreadable_bytes);

// The bytes of an open file, mapped for reading as gdbm maps those that it only reads. The process
// ends where the disk cannot be read or the file is cut meanwhile, as it does in gdbm.
class MappedFile {
 public:
  // Maps the file of `descriptor`, which may be closed then.
  explicit MappedFile(int descriptor);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  // Returns false if the system does not map the file, or has no addresses for it.
  bool is_mapped() const { return start_ != nullptr; }
  std::string_view bytes() const { return {static_cast<const char*>(start_), size_}; }

 private:
  void* start_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_SALVAGE_FILE_READING_H_
