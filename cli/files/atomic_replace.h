// The steps of replacing a file by a new version: copying it, and syncing it to the disk.
#ifndef KESTAN_CLI_FILES_ATOMIC_REPLACE_H_
#define KESTAN_CLI_FILES_ATOMIC_REPLACE_H_

#include <string>

namespace kestan_cli {

// Copies the bytes of the open file `source` to a new file at `path`, which only this user may
// open. The two share their blocks if the file system can do that.
//   Returns  0 or the system's error number, with or without a part of the file at `path`.
int CopyFile(int source, const std::string& path);

// Waits until the file or directory at `path` is on the disk.
//   Returns  0 or the system's error number.
int SyncPath(const std::string& path);

// Returns the directory of `path`.
std::string DirectoryOf(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_ATOMIC_REPLACE_H_
