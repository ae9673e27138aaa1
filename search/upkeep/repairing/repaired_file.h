// SPDX-License-Identifier: GPL-3.0-or-later
// Index files that the engine repairs.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIRED_FILE_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIRED_FILE_H_

#include <kestan/maintenance.h>
#include <kestan/search/status.h>

#include <string>

namespace kestan::search {

// Makes the index file `made` of what the engine can read of the one at `damaged`. Hands out what
// it finds, but not why there is no new file.
//   Returns  kDamaged where nothing could be read; kSystem about `made`.
Status RepairIndexFile(const std::string& damaged, const std::string& made, const TakeFinding& take,
                       RepairResult* result);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIRED_FILE_H_
