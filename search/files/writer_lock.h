// SPDX-License-Identifier: GPL-3.0-or-later
// The lock that makes a writer the only one.
#ifndef KESTAN_SEARCH_FILES_WRITER_LOCK_H_
#define KESTAN_SEARCH_FILES_WRITER_LOCK_H_

#include <kestan/search/status.h>

#include <string>
#include <utility>

#include "search/files/descriptor.h"

namespace kestan::search {

// Holds a lock of the system's on a file of its own, so that it ends with the process however that
// ends. The file stays; while somebody holds the lock, it has the number of the process.
class WriterLock {
 public:
  // Locks the file at `path`, and makes it where there is none.
  //   Returns  kBusy "process 1234 is writing it", kNotFound without its directory, kSystem.
  static Result<WriterLock> Take(const std::string& path);

  WriterLock(WriterLock&& other) noexcept = default;
  WriterLock& operator=(WriterLock&& other) noexcept;
  ~WriterLock() { Release(); }

  // Closes the file in a child process, to whose parent the lock belongs. There it stays.
  void CloseInChild() noexcept { file_.Close(); }

 private:
  explicit WriterLock(Descriptor file) : file_(std::move(file)) {}
  void Release();

  Descriptor file_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_WRITER_LOCK_H_
