// SPDX-License-Identifier: GPL-3.0-or-later
// Folders, and what they hold.
#ifndef KESTAN_SEARCH_FILES_FOLDER_NAMES_H_
#define KESTAN_SEARCH_FILES_FOLDER_NAMES_H_

#include <kestan/search/status.h>

#include <string>
#include <vector>

namespace kestan::search {

// Returns the folder that the file at `path` lies in.
std::string FolderOf(const std::string& path);

// Returns the names of all files and folders in `folder`, sorted. Unlike the iterator of the
// standard library, which ends the process then, it survives a lack of memory.
//   Returns  kNotFound, kSystem, kOutOfMemory.
Result<std::vector<std::string>> NamesIn(const std::string& folder);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_FOLDER_NAMES_H_
