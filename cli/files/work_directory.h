// A directory beside a file in which a new version of the file is made.
#ifndef KESTAN_CLI_FILES_WORK_DIRECTORY_H_
#define KESTAN_CLI_FILES_WORK_DIRECTORY_H_

#include <string>
#include <string_view>

#include "cli/files/descriptor.h"

namespace kestan_cli {

// A directory beside a file, for a new version of that file. Only this user may enter it. Whoever
// may write to the directory around it can remove it, but cannot make the process write elsewhere:
// it is opened once, and paths into it begin at the open descriptor.
//
// Its name cannot be predicted, and its check digits show that this command made it. The process
// locks it while it works there. One that is not locked was left by a process that was ended.
class WorkDirectory {
 public:
  // Makes it beside the file at `path`, which need not exist.
  //   Throws   CommandError "COMPLAINT: cannot make a folder beside it: REASON".
  WorkDirectory(const std::string& path, const std::string& complaint);
  ~WorkDirectory();  // removes it with what is in it
  WorkDirectory(const WorkDirectory&) = delete;
  WorkDirectory& operator=(const WorkDirectory&) = delete;

  // The path of the new version. Nothing is there at first.
  const std::string& file() const { return file_; }

  // Opens the new version for reading and writing. Follows no link.
  //   Returns  a closed descriptor, with errno set, if that fails.
  Descriptor Open() const;

  // Replaces the file by the new version.
  //   Returns  0 or the system's error number.
  int Replace() const;

  // Moves the new version to the path of the file, where nothing is yet.
  //   Returns  0 or the system's error number: EEXIST if something is there.
  int Place() const;

 private:
  int Make(const std::string& path);
  std::string PathOfFile() const;

  const std::string target_;  // the file's name in `around_`
  std::string name_;
  std::string file_;
  Descriptor around_;
  Descriptor folder_;
};

// Removes the work directories beside the file at `path` that ended processes of this user left.
// Keeps those that a process still works in, and everything that this command has not made.
void RemoveLeftovers(const std::string& path);

// Returns whether `name`, without its directory, is that of a work directory.
bool IsWorkDirectoryName(std::string_view name);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_WORK_DIRECTORY_H_
