// SPDX-License-Identifier: GPL-3.0-or-later
// Reclaiming what removed documents left.
#ifndef KESTAN_INDEXING_SHRINK_H_
#define KESTAN_INDEXING_SHRINK_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>

namespace kestan {

// Purges the postings of removed documents, but not those of one-byte words, appends their codes to
// `reusable_codes`, the value of "g-avail", and compacts the file. If a record cannot be read, no
// code becomes reusable.
//   Returns  0; -1 if no file is open; or gdbm's error number from compacting.
int PurgeAndCompact(Database& store, const DBDatumPtr& reusable_codes, bool with_positions);

}  // namespace kestan

#endif  // KESTAN_INDEXING_SHRINK_H_
