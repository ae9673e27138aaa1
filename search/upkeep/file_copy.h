// SPDX-License-Identifier: GPL-3.0-or-later
// Making files of known bytes, with their checksums.
#ifndef KESTAN_SEARCH_UPKEEP_FILE_COPY_H_
#define KESTAN_SEARCH_UPKEEP_FILE_COPY_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "search/files/output_file.h"

namespace kestan::search {

// Copies the bytes of the file at `path` to `target`, where there must be none. Calls `advance`,
// which may be null, with the bytes copied since the last call; it returns whether to go on. Does
// not sync.
//   Returns  size and checksum; kNotFound, kSystem, kInterrupted, without a copy.
Result<FileSummary> CopyFile(const std::string& path, const std::string& target,
                             const std::function<bool(std::uint64_t bytes)>& advance);

// Writes `bytes` to the new file at `path`. Does not sync.
//   Returns  size and checksum; kSystem, without a file.
Result<FileSummary> WriteNewFile(const std::string& path, std::string_view bytes);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_FILE_COPY_H_
