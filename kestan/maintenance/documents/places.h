// SPDX-License-Identifier: GPL-3.0-or-later
// The places of the words of an index, as its postings give them.
#ifndef KESTAN_MAINTENANCE_DOCUMENTS_PLACES_H_
#define KESTAN_MAINTENANCE_DOCUMENTS_PLACES_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/maintenance/documents/contents.h>
#include <kestan/storage/database.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>

namespace kestan {

// Where a word is: document, position and word as one number, so that sorting is fast.
using Place = std::uint64_t;

constexpr Place MakePlace(Code code, Position position, WordId word) {
  return Place{code} << 48 | Place{position} << 32 | word;
}
inline Code CodeOf(Place place) { return static_cast<Code>(place >> 48); }
inline Position PositionOf(Place place) { return static_cast<Position>(place >> 32); }
inline WordId WordOf(Place place) { return static_cast<WordId>(place); }

using PlaceCounts = Vector<std::size_t>;  // of each code

// Counts the places of words in each document.
//   Returns  0 or gdbm's error number.
int CountPlaces(Database& store, const Contents& contents, PlaceCounts* counts);

// Finds the `count` places of words in the documents of `codes`, in order.
//   Returns  0 or gdbm's error number.
int FindPlaces(Database& store, const Contents& contents, const CodeSet& codes, std::size_t count,
               Vector<Place>* places);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DOCUMENTS_PLACES_H_
