// From a word to its result set.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/format/records.h>
#include <kestan/query/result_set.h>

#include <cstdint>
#include <utility>

namespace {

constexpr std::size_t kSmallestEntryUnits = 3;  // code, count, one position

// A damaged record may end behind a code, or count more positions at its end than it holds.
void CloseLastEntry(const kestan::Posting& last, kestan::UnfilledVector<std::uint16_t>* units) {
  if (last.units == 1) units->push_back(0);
  if (last.units > 1) (*units)[last.first_unit + 1] = last.positions;
}

// Each document scores the number of its positions. The set takes all units of the record in one
// copy; the codes between the positions cost less memory than sorting them out costs time.
void AddPostings(const DBDatum& record, kestan::ResultSet* set) {
  auto units = kestan::CopyUnits(record);
  set->Reserve(units.size() / kSmallestEntryUnits + 1, 0);
  kestan::PostingReader reader(record, true);
  kestan::Posting entry{};
  while (reader.Next(&entry)) set->AddTaken(entry.code, entry.positions, entry.first_unit + 1);
  CloseLastEntry(entry, &units);
  set->TakeUnits(std::move(units));
}

void AddCodes(const DBDatum& record, kestan::ResultSet* set) {
  kestan::PostingReader reader(record, false);
  kestan::Posting entry;
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
