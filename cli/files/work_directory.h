// A place beside a file in which a new version of it is made.
#ifndef KESTAN_CLI_FILES_WORK_DIRECTORY_H_
#define KESTAN_CLI_FILES_WORK_DIRECTORY_H_

#include <string>
#include <string_view>

#include "cli/files/descriptor.h"

namespace kestan_cli {

// A folder that only this user may enter, beside a file, for a new version of that file. Whoever
// may write to the folder around it can take it away, but cannot make the process write elsewhere:
// the folder is opened once, and paths into it begin at what is open.
//
// Its name cannot be foretold, and shows by its check digits who made it. The process has it locked
// as long as it works there, so that what an ended process left can be told from what is in use.
class WorkFolder {
 public:
  // Makes it beside the file at `path`, which need not be there.
  //   Throws   CommandError "COMPLAINT: cannot make a folder beside it: REASON".
  WorkFolder(const std::string& path, const std::string& complaint);
  ~WorkFolder();  // removes it with what is in it
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  // Where the new version is to be made. Nothing is there at first.
  const std::string& file() const { return file_; }

  // Opens what is there, for reading and writing. Follows no link.
  //   Returns  a closed descriptor, with errno set, if it cannot.
  Descriptor Open() const;

  // Puts the new version in the place of the file.
  //   Returns  0 or the system's error number.
  int Replace() const;

  // Puts the new version where the file is to be, if there is nothing yet.
  //   Returns  0 or the system's error number: EEXIST if there is something.
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

// Removes the folders that processes of this user left beside the file at `path` when they were
// ended. Leaves alone what a process still works in, and all that this command has not made.
void RemoveLeftovers(const std::string& path);

// Returns whether `name`, without folders, is one that this command gives to a work folder.
bool IsNameOfWorkFolder(std::string_view name);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_WORK_DIRECTORY_H_
