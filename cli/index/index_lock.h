// Keeping others out while an index changes.
#ifndef KESTAN_CLI_INDEX_INDEX_LOCK_H_
#define KESTAN_CLI_INDEX_INDEX_LOCK_H_

#include <string>

#include "cli/files/descriptor.h"

namespace kestan_cli {

// Keeps everybody out who would change an index: other commands, and programs that write it in
// place. Whoever reads it goes on. There is no lock file: the index itself is locked, with locks
// that belong to the open file, so that they go with the process however that ends.
class IndexLock {
 public:
  // Locks the file at `path`, unless there is none.
  //   Throws   CommandError "COMPLAINT: REASON", with the status kBusy if another process is
  //            changing it.
  IndexLock(std::string path, const std::string& complaint);

  // Whether there was a file to lock.
  bool has_file() const { return file_.is_open(); }

  // Returns the locked file, open as long as this lives, whatever happens to its name.
  int file() const { return file_.number(); }

  // Returns whether the locked file still has its name or, without one, whether nobody else has
  // made one.
  bool IsInPlace() const;

  // Lets this process write the file in place, under gdbm's own lock. Other commands stay out.
  void LetWriteInPlace() { reader_.Close(); }

 private:
  bool Lock(const std::string& complaint);

  const std::string path_;
  Descriptor file_;    // keeps other commands out
  Descriptor reader_;  // keeps gdbm's writers out
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_LOCK_H_
