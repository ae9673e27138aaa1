// The lock that makes a writer the only one.
#ifndef KESTAN_SEARCH_FILES_WRITER_LOCK_H_
#define KESTAN_SEARCH_FILES_WRITER_LOCK_H_

#include <kestan/search/status.h>

#include <string>

namespace kestan::search {

// Holds a lock of the system's on a file of its own, so that it ends with the process however that
// ends. The file has the number of the process that holds it, and stays.
class WriterLock {
 public:
  // Locks the file at `path`, and makes it where there is none.
  //   Returns  kBusy "process 1234 is writing it", kSystem.
  static Result<WriterLock> Take(const std::string& path);

  WriterLock(WriterLock&& other) noexcept;
  WriterLock& operator=(WriterLock&& other) noexcept;
  ~WriterLock();

 private:
  explicit WriterLock(int descriptor) : descriptor_(descriptor) {}

  int descriptor_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_WRITER_LOCK_H_
