// SPDX-License-Identifier: GPL-3.0-or-later
// Indexes that are open for reading: folders, and index files of class Kestan.
#ifndef KESTAN_CLI_INDEX_OPENED_READER_H_
#define KESTAN_CLI_INDEX_OPENED_READER_H_

#include <kestan/search.h>

#include <string>
#include <vector>

namespace kestan_cli {

// Opens the indexes at `paths`, of which there is one at least, to be searched as one.
//   Throws   CommandError that names the index which is missing, damaged, or no index.
kestan::search::IndexReader OpenReader(const std::vector<std::string>& paths);
kestan::search::IndexReader OpenReader(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_INDEX_OPENED_READER_H_
