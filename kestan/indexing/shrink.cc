// Reclaiming what removed documents left behind.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/format/records.h>

namespace {

// Tells words from system records by the second byte alone. One-byte words are passed over, so
// their records keep the entries of removed documents: files in use have always been shrunk this
// way.
bool IsPurgedKey(const DBDatum& key) { return key.size >= 2 && key.data[1] != '-'; }

// Takes the entries of `codes` out of the words' records; they reach the file at the next flush.
//   Returns  false if there may be records that could not be read.
bool PurgeWords(Database& store, const kestan::CodeSet& codes, bool with_positions) {
  DBDatumPtr key;
  DBDatumPtr value;
  bool all_read = true;
  for (int end = store.First(&key, &value); end != -1; end = store.Next(&key, &value)) {
    if (end != 0) all_read = false;
    if (end != 0 || !IsPurgedKey(*key.ptr)) continue;
    if (kestan::PurgePostings(value.ptr, codes, with_positions)) value.ptr->dirty = true;
  }
  return all_read && store.WalkError() == 0;
}

}  // namespace

int Kestan::ShrinkIndex() {
  const DBDatumPtr deleted = kestan::Fetch(store_, kestan::kDeletedKey);
  if (deleted.ptr == nullptr) return store_.Shrink();

  kestan::CodeSet codes;
  kestan::CollectCodes(*deleted.ptr, &codes);
  codes.set(0);  // no document has it: its entries are damage, and go too
  const bool with_positions = (OptionFlags & kestan::kFlagNoPositions) == 0;
  // A code that is used again must not find entries of its earlier document in any record.
  if (!PurgeWords(store_, codes, with_positions)) return store_.Shrink();

  const bool was_empty = AvailCodes.ptr->size == 0;
  kestan::AppendCodes(AvailCodes.ptr, *deleted.ptr);
  AvailCodes.ptr->dirty = true;
  store_.Del(kestan::AsDatum(kestan::kDeletedKey));
  if (was_empty) store_.Put(kestan::AsDatum(kestan::kAvailableKey), *AvailCodes.ptr);
  return store_.Shrink();
}
