// Putting a changed copy of a file in its place, so that whoever looks sees the old one or the new
// one, whole.
#ifndef KESTAN_CLI_FILE_SWAP_H_
#define KESTAN_CLI_FILE_SWAP_H_

#include <string>

#include "descriptor.h"

namespace kestan_cli {

// Keeps others out who want to change the file at `path` in the same way. The lock is a file
// `path`.lock, which goes with it; the system lets go of the lock when the process ends, however it
// ends, and whoever comes next takes over the file that is left.
class FileLock {
 public:
  // Throws CommandError "COMPLAINT: REASON": with the status kBusy, if another process has the
  // lock.
  FileLock(const std::string& path, const std::string& complaint);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  const std::string path_;
  Descriptor file_;
};

// Copies the open file `source` to a new one at `path`, with its mode and, where that is allowed,
// its owner. Shares the blocks of the two where the file system can.
//   Returns  0 or the system's error number; then there may be a part of the file.
int CopyFile(int source, const std::string& path);

// Waits until the file or folder at `path` is on the disk.
//   Returns  0 or the system's error number.
int SyncPath(const std::string& path);

// Returns the folder that `path` lies in.
std::string FolderOf(const std::string& path);

// Deletes what a process that was ended left of its copy `path`: the file itself and those beside
// it that gdbm was rewriting it to, which have six more letters behind a dot.
void RemoveLeftovers(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILE_SWAP_H_
