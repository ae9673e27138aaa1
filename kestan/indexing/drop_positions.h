// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the positions out of an index.
#ifndef KESTAN_INDEXING_DROP_POSITIONS_H_
#define KESTAN_INDEXING_DROP_POSITIONS_H_

#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

namespace kestan {

// Fetches the posting records of all words, in the file's order.
//   Returns  false if there may be records, of words or not, that cannot be read.
bool FetchPostingRecords(Database& store, Vector<DBDatumPtr>* records);

// Takes the positions out of the records, which reach the file at the next flush.
void DropAllPositions(const Vector<DBDatumPtr>& records);

}  // namespace kestan

#endif  // KESTAN_INDEXING_DROP_POSITIONS_H_
