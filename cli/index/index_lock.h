// Keeps other processes from changing an index.
#ifndef KESTAN_CLI_INDEX_INDEX_LOCK_H_
#define KESTAN_CLI_INDEX_INDEX_LOCK_H_

#include <string>

#include "cli/files/descriptor.h"

namespace kestan_cli {

// Keeps out other commands that would change an index, and programs that write it in place. Readers
// are not affected. There is no lock file: the index itself is locked. The locks belong to the open
// file, so they end with the process, however it ends.
class IndexLock {
 public:
  // Locks the file at `path`, unless there is none.
  //   Throws   CommandError "COMPLAINT: REASON", with the status kBusy if another process is
  //            changing it.
  IndexLock(std::string path, const std::string& complaint);

  // Returns whether there was a file to lock.
  bool has_file() const { return file_.is_open(); }

  // Returns the locked file. It stays open until the destruction of the lock, even if it is
  // renamed.
  int file() const { return file_.number(); }

  // Returns whether the locked file is still at the path; if there was none, whether there is still
  // none.
  bool IsInPlace() const;

  // Allows this process to write the file in place, under gdbm's own lock. Keeps other commands
  // out.
  void LetWriteInPlace() { reader_.Close(); }

 private:
  bool Lock(const std::string& complaint);

  const std::string path_;
  Descriptor file_;    // keeps other commands out
  Descriptor reader_;  // keeps gdbm's writers out
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_LOCK_H_
