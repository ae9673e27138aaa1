// Copying a file, and seeing to it that it is on the disk.
#ifndef KESTAN_CLI_FILES_ATOMIC_REPLACE_H_
#define KESTAN_CLI_FILES_ATOMIC_REPLACE_H_

#include <string>

namespace kestan_cli {

// Copies the bytes of the open file `source` to a new one at `path`, which only this user may open.
// Shares the blocks of the two where the file system can.
//   Returns  0 or the system's error number; then there may be a part of the file.
int CopyFile(int source, const std::string& path);

// Waits until the file or folder at `path` is on the disk.
//   Returns  0 or the system's error number.
int SyncPath(const std::string& path);

// Returns the folder that `path` lies in.
std::string FolderOf(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_ATOMIC_REPLACE_H_
