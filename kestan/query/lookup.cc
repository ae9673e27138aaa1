// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/lookup.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>

#include <cstdint>
#include <utility>

namespace kestan {
namespace {

constexpr std::size_t kSmallestPostingUnits = 3;  // code, count, one position

// A damaged record may end after a code, or count more positions at its end than it holds.
void CloseLastPosting(const Posting& last, UnfilledVector<std::uint16_t>* units) {
  if (last.units == 1) units->push_back(0);
  if (last.units >= kUnitsBeforePositions) (*units)[last.count_unit()] = last.positions;
}

// Each document scores the number of its positions. The set takes all units of the record in one
// copy; the codes between the positions cost less memory than sorting them out costs time.
void AddPostings(const DBDatum& record, ResultSet* set) {
  auto units = CopyUnits(record);
  set->Reserve(units.size() / kSmallestPostingUnits + 1, 0);
  PostingReader reader(record, true);
  Posting posting{};
  while (reader.Next(&posting)) {
    set->AddTaken(posting.code, posting.positions, posting.count_unit());
  }
  CloseLastPosting(posting, &units);
  set->TakeUnits(std::move(units));
}

void AddCodes(const DBDatum& record, ResultSet* set) {
  PostingReader reader(record, false);
  Posting posting;
  while (reader.Next(&posting)) set->AddUnplaced(posting.code, 1);
}

}  // namespace

std::optional<ResultSet> FindWord(Database& store, std::string_view word, bool with_positions) {
  const DBDatumPtr record = Fetch(store, word);
  if (record.ptr == nullptr) return std::nullopt;
  ResultSet set;
  if (with_positions) {
    AddPostings(*record.ptr, &set);
  } else {
    AddCodes(*record.ptr, &set);
  }
  set.Sort();  // a reused code stands after higher ones
  return set;
}

}  // namespace kestan
