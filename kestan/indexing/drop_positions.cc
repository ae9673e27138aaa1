// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/drop_positions.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/storage/walk/record_iterator.h>

namespace kestan {

bool FetchPostingRecords(Database& store, Vector<DBDatumPtr>* records) {
  RecordIterator record(store);
  for (; record.Valid(); record.Next()) {
    if (!IsSystemKey(record.key())) records->push_back(record.value());
  }
  return record.all_read();
}

void DropAllPositions(const Vector<DBDatumPtr>& records) {
  for (const DBDatumPtr& record : records) {
    DropPositions(record.ptr);
    record.ptr->dirty = true;
  }
}

}  // namespace kestan
