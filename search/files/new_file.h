// SPDX-License-Identifier: GPL-3.0-or-later
// Making the files of an index.
#ifndef KESTAN_SEARCH_FILES_NEW_FILE_H_
#define KESTAN_SEARCH_FILES_NEW_FILE_H_

#include <string>

#include "search/files/descriptor.h"

namespace kestan::search {

// Makes a file of an index, for reading and writing, and gives it the access rights of its folder
// as ShareLikeFolder() does. Never opens what is there already, nor what a link leads to.
//   Returns  its descriptor; -1 after an error, errno says why.
Descriptor CreateFile(const std::string& path);

// Gives a file the access rights of the folder that it lies in, so that whoever may change the
// index still can, whoever has changed it last. It gets the folder's owner and group as far as this
// process may set them, and may be read and written by whom the folder lets in and write. Where the
// group cannot be set, the file's own group gets no more than all others, and all others no more
// than the folder's group, whose members they now include, if the folder lets it in.
void ShareLikeFolder(const Descriptor& file, const std::string& path);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FILES_NEW_FILE_H_
