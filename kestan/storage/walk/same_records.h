// SPDX-License-Identifier: GPL-3.0-or-later
// Compares the records of two stores.
#ifndef KESTAN_STORAGE_WALK_SAME_RECORDS_H_
#define KESTAN_STORAGE_WALK_SAME_RECORDS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/export.h>

namespace kestan {

// Returns whether both stores have the same records: each key of one is in the other, with the same
// value. False also where a record cannot be read, or no file is open, which the store says.
// Changes that wait to be written are compared too. Flushes both stores now and then.
//   Cost     one walk over each file, and a look-up in the other for each record; memory for 1,000
//            records of each.
KESTAN_EXPORT bool HaveSameRecords(Database& first, Database& second);

}  // namespace kestan

#endif  // KESTAN_STORAGE_WALK_SAME_RECORDS_H_
