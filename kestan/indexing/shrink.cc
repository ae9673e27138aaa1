// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/shrink.h>

#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/storage/walk/record_iterator.h>

namespace kestan {
namespace {

// Takes the postings of `codes` out of the words' records; they reach the file at the next flush.
//   Returns  false if there may be records that could not be read.
bool PurgeWords(Database& store, const CodeSet& codes, bool with_positions) {
  WalkOptions options;
  options.visits_unreadable = true;
  RecordIterator record(store, options);
  for (; record.Valid(); record.Next()) {
    DBDatum* const value = record.value().ptr;
    if (value == nullptr || IsNeverPurged(record.key())) continue;
    if (PurgePostings(value, codes, with_positions)) value->dirty = true;
  }
  return record.all_read();
}

}  // namespace

int PurgeAndCompact(Database& store, const DBDatumPtr& reusable_codes, bool with_positions) {
  const DBDatumPtr removed = Fetch(store, kDeletedKey);
  if (removed.ptr == nullptr) return store.Shrink();

  CodeSet codes;
  CollectCodes(*removed.ptr, &codes);
  codes.set(0);  // no document has it: its postings are damage, and go too
  // A code that is used again must not find postings of its earlier document in any record.
  if (!PurgeWords(store, codes, with_positions)) return store.Shrink();

  const bool was_empty = reusable_codes.ptr->size == 0;
  AppendCodes(reusable_codes.ptr, *removed.ptr);
  reusable_codes.ptr->dirty = true;
  store.Del(AsDatum(kDeletedKey));
  if (was_empty) store.Put(AsDatum(kAvailableKey), *reusable_codes.ptr);
  return store.Shrink();
}

}  // namespace kestan
