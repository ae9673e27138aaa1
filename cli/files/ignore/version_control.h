// SPDX-License-Identifier: GPL-3.0-or-later
// The folders in which version control keeps its own files.
#ifndef KESTAN_CLI_FILES_IGNORE_VERSION_CONTROL_H_
#define KESTAN_CLI_FILES_IGNORE_VERSION_CONTROL_H_

#include <string>

namespace kestan_cli {

// Returns what keeps its own files in `name`, a file or folder of the open folder `folder`: "git",
// "Subversion". Returns "" if nothing does: a folder that is only called CVS is none of CVS.
std::string VersionControlOf(int folder, const std::string& name);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_IGNORE_VERSION_CONTROL_H_
