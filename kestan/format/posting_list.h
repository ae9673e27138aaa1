// SPDX-License-Identifier: GPL-3.0-or-later
// The posting record of a word: which documents hold it, and where. docs/index-file.md has the
// table.
#ifndef KESTAN_FORMAT_POSTING_LIST_H_
#define KESTAN_FORMAT_POSTING_LIST_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_cursor.h>
#include <kestan/format/units.h>
#include <kestan/storage/datum_bytes.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kestan {

// A record holds a posting for each document: its code, the number n of positions, the n positions.
// Without positions (option flag 1), the code alone. An odd last byte is ignored.

inline constexpr std::size_t kUnitsBeforePositions = 2;  // the code and the number of positions

struct Posting {
  std::size_t count_unit() const { return first_unit + 1; }  // where the number of positions is
  std::size_t end_unit() const { return first_unit + units; }

  std::size_t first_unit;  // where the posting begins
  std::size_t units;       // how many units of it the record holds
  Code code;
  std::uint16_t positions;  // how many of its positions the record holds; they end the posting
};

// Walks the postings of a record in the order they were added, and says where each lies.
class PostingReader {
 public:
  // Borrows `record`, which must not change during the walk. Begins at unit `first_unit`, where a
  // posting begins.
  PostingReader(const DBDatum& record, bool with_positions, std::size_t first_unit = 0)
      : next_unit_(std::min<std::size_t>(first_unit, record.size / kUnitBytes)),
        cursor_(BytesOf(record).substr(next_unit_ * kUnitBytes), with_positions) {}

  // Moves to the next posting.
  //   Returns  false, with `*posting` as it was, if there is none.
  bool Next(Posting* posting) {
    if (!cursor_.Next()) return false;
    posting->first_unit = next_unit_;
    posting->units = cursor_.bytes().size() / kUnitBytes;
    posting->code = cursor_.code();
    posting->positions = static_cast<std::uint16_t>(cursor_.positions().size());
    next_unit_ += posting->units;
    return true;
  }

 private:
  std::size_t next_unit_;
  PostingCursor cursor_;
};

// Returns those positions of a posting that its record holds.
inline EncodedPositions PositionsOf(const DBDatum& record, const Posting& posting) {
  return {UnitAddress(record, posting.end_unit() - posting.positions), posting.positions};
}

// Returns how many positions a posting of a record with positions says that it has. The last one of
// a cut record may hold fewer, or end before it says: then 0.
inline std::uint16_t StatedPositions(const DBDatum& record, const Posting& posting) {
  return posting.units >= kUnitsBeforePositions ? UnitAt(record, posting.count_unit())
                                                : Position{0};
}

// Of more positions, a posting keeps the first, for that is what the count can say.
inline constexpr std::size_t kMostPositions = UINT16_MAX;

// Returns how many bytes a posting takes that has `positions` positions.
inline std::size_t PostingBytes(std::size_t positions) {
  return (kUnitsBeforePositions + std::min(positions, kMostPositions)) * kUnitBytes;
}

// Writes a posting with its positions as so many bytes.
void StorePosting(char* bytes, Code code, const Positions& positions);
void StorePosting(char* bytes, Code code, const EncodedPositions& positions);

// Appends a posting to the bytes of a record; with `positions` null, one without positions.
void EncodePosting(Code code, const EncodedPositions* positions, String* bytes);

// Returns all units of the record, codes and counts among them.
UnfilledVector<std::uint16_t> CopyUnits(const DBDatum& record);

// Returns how many documents the record lists.
std::size_t CountPostings(const DBDatum& record, bool with_positions);

// Adds a posting at the end; with `positions` null, one without positions. Not marked dirty here.
//   Returns  false with nothing changed if the record would grow past what gdbm can store. Of more
//            than 65535 positions the first 65535 are kept, for that is what the count can say.
bool AppendPosting(DBDatum* record, Code code, const Positions* positions);

// Takes the positions out of every posting. The buffer keeps its size. Not marked dirty here.
void DropPositions(DBDatum* record);

// Takes out the postings of `codes`; the others keep their order. Not marked dirty here.
//   Returns  whether there were any.
bool PurgePostings(DBDatum* record, const CodeSet& codes, bool with_positions);

}  // namespace kestan

#endif  // KESTAN_FORMAT_POSTING_LIST_H_
