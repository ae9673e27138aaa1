// A whole file in memory, as much of it as the system gives.
#ifndef KESTAN_MAINTENANCE_FILE_READING_H_
#define KESTAN_MAINTENANCE_FILE_READING_H_

#include <kestan/storage/memory.h>

#include <cstdint>

namespace kestan {

// Reads the regular file at `path` into `*bytes`. A mapping would be cheaper, but the process would
// end where the disk cannot be read or the file is cut meanwhile; here, blocks of 512 bytes that
// cannot be read become zeros, and count in `*unreadable_bytes`.
//   Returns  0, or the system's error number: also EFBIG for a file that no memory could hold, and
//            EINVAL for what is no regular file.
int ReadWholeFile(const char* path, String* bytes, std::uint64_t* unreadable_bytes);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_FILE_READING_H_
