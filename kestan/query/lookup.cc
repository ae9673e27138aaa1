// From a word to its result set.
#include <kestan/engine/kestan.h>
#include <kestan/engine/keys.h>
#include <kestan/engine/records.h>
#include <kestan/query/result_set.h>

namespace {

// Each document scores the number of its positions. The set takes all units of the record in one
// copy; the codes and counts between the positions cost less memory than sorting them out costs
// time.
void AddPostings(const DBDatum& record, kestan::ResultSet* set) {
  set->TakePositions(kestan::CopyUnits(record));
  kestan::PostingReader reader(record, true);
  kestan::PostingEntry entry;
  while (reader.Next(&entry)) {
    set->AddTaken(entry.code, entry.positions, entry.first_unit + 2, entry.positions);
  }
}

void AddCodes(const DBDatum& record, kestan::ResultSet* set) {
  kestan::PostingReader reader(record, false);
  kestan::PostingEntry entry;
  while (reader.Next(&entry)) set->AddUnplaced(entry.code, 1);
}

}  // namespace

int Kestan::QueryWord(const char* word) {
  const DBDatumPtr record = kestan::Fetch(store_, word);
  if (record.ptr == nullptr) return -1;
  const bool with_positions = (OptionFlags & kestan::kFlagNoPositions) == 0;
  auto* const set = kestan::New<kestan::ResultSet>();
  if (with_positions) {
    AddPostings(*record.ptr, set);
  } else {
    AddCodes(*record.ptr, set);
  }
  set->Sort();  // a reused code stands behind higher ones
  return kestan::AddQueryResult(set);
}
