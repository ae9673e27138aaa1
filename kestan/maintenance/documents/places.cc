// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/documents/places.h>

#include <kestan/format/keys.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/storage/walk/flush_policy.h>

#include <algorithm>

namespace kestan {
namespace {

// Calls `visit(posting)` for each posting of the record, in no particular order, except those that
// a later one replaces: where no shrink purges the record, a posting may be that of an earlier
// document, and the last one of a code counts.
template <typename Visit>
void ForEachPostingOf(std::string_view word, const DBDatum& record, bool has_positions,
                      Visit visit) {
  PostingReader reader(record, has_positions);
  Posting posting{};
  if (!IsNeverPurged(word)) {
    while (reader.Next(&posting)) visit(posting);
    return;
  }
  Vector<Posting> postings;
  while (reader.Next(&posting)) postings.push_back(posting);
  CodeSet visited;
  for (auto last = postings.rbegin(); last != postings.rend(); ++last) {
    if (!visited[last->code]) visit(*last);
    visited.set(last->code);
  }
}

// Calls `visit(word, record, posting)` for each posting of the index.
//   Returns  0 or gdbm's error number.
template <typename Visit>
int ForEachPosting(Database& store, const Contents& contents, Visit visit) {
  PeriodicFlush flush(store);
  DBDatumPtr record;
  for (WordId word = 0; word < contents.words().size(); ++word) {
    const String& bytes = contents.words()[word];
    if (const int error = ReadRecord(store, bytes, &record); error != 0) return error;
    if (record.ptr == nullptr) continue;
    ForEachPostingOf(bytes, *record.ptr, contents.has_positions(),
                     [&](const Posting& posting) { visit(word, *record.ptr, posting); });
    const std::size_t held_bytes = record.ptr->size;
    record.Free();
    flush.Note(held_bytes);
  }
  return 0;
}

}  // namespace

int CountPlaces(Database& store, const Contents& contents, PlaceCounts* counts) {
  counts->assign(std::size_t{kMaxCode} + 1, 0);
  return ForEachPosting(store, contents, [&](WordId, const DBDatum&, const Posting& posting) {
    (*counts)[posting.code] += contents.has_positions() ? posting.positions : 1;
  });
}

int FindPlaces(Database& store, const Contents& contents, const CodeSet& codes, std::size_t count,
               Vector<Place>* places) {
  places->clear();
  places->reserve(count);
  const int error = ForEachPosting(store, contents,
                                   [&](WordId word, const DBDatum& record, const Posting& posting) {
                                     if (!codes[posting.code]) return;
                                     if (!contents.has_positions())
                                       places->push_back(MakePlace(posting.code, 0, word));
                                     for (const Position position : PositionsOf(record, posting)) {
                                       places->push_back(MakePlace(posting.code, position, word));
                                     }
                                   });
  std::sort(places->begin(), places->end());
  return error;
}

}  // namespace kestan
