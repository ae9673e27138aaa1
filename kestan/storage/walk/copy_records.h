// SPDX-License-Identifier: GPL-3.0-or-later
// Copies all records of one store into another.
#ifndef KESTAN_STORAGE_WALK_COPY_RECORDS_H_
#define KESTAN_STORAGE_WALK_COPY_RECORDS_H_

#include <kestan/storage/database.h>

namespace kestan {

// Copies every record of `source`, with changes that wait to be written, into `target`, which keeps
// records of other keys. Both are open. Flushes both after the 1001st record, and then after every
// 1000 more. Ends at a record of `source` that cannot be read, but not at one that `target`
// refuses: Database::FileError() of each store has the error.
void CopyRecords(Database& source, Database& target);

}  // namespace kestan

#endif  // KESTAN_STORAGE_WALK_COPY_RECORDS_H_
