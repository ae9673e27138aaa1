// SPDX-License-Identifier: GPL-3.0-or-later
// Examines an index of one file before it is read, so that damage and other kinds of files are told
// from indexes that hold little.
#ifndef KESTAN_CLI_INDEX_INDEX_EXAMINATION_H_
#define KESTAN_CLI_INDEX_INDEX_EXAMINATION_H_

#include <kestan/index_file.h>

#include <string>

namespace kestan_cli {

// Opens the regular file at `path` as `file`. Writes nothing to it.
//   Throws   CommandError "cannot open index 'PATH': REASON" if it cannot be read, is not an index,
//            or has lost its counter of documents; with the status kBusy if another process is
//            writing it. "cannot read index 'PATH': REASON" if it is damaged where that is looked
//            up.
void OpenIndexFile(kestan::IndexFile& file, const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_INDEX_EXAMINATION_H_
