// The layouts of the index's records: every number that is read from one or written into one goes
// through here. Numbers are little-endian. Bytes that a record lacks read as 0, so that no reader
// leaves a record, whatever the file holds. docs/index-file.md has the tables.
#ifndef KESTAN_FORMAT_RECORDS_H_
#define KESTAN_FORMAT_RECORDS_H_

#include <kestan/format/posting.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

using CodeSet = std::bitset<kMaxCode + 1>;

inline constexpr std::uint32_t kUnitBytes = 2;  // codes, counts and positions are units
inline constexpr std::uint32_t kTimestampBytes = 4;
inline constexpr std::uint32_t kDocumentRecordBytes = kTimestampBytes + 4;  // the code takes 4 here

// Returns unit `index` of the record, which must hold it whole.
inline std::uint16_t UnitAt(const DBDatum& record, std::size_t index) {
  const char* const bytes = record.data + index * kUnitBytes;
  const unsigned low = static_cast<unsigned char>(bytes[0]);
  const unsigned high = static_cast<unsigned char>(bytes[1]);
  return static_cast<std::uint16_t>(low | high << CHAR_BIT);
}

// ---- Posting record: which documents hold a word, and where ----
//
// An entry for each document: its code, the number n of positions, the n positions. Without
// positions (option flag 1), the code alone. An odd last byte is ignored.

struct Posting {
  std::size_t first_unit;  // where the entry begins
  std::size_t units;       // how many units of it the record holds
  Code code;
  std::uint16_t positions;  // how many of its positions the record holds; they end the entry
};

// Walks the entries of a record in the order they were added.
class PostingReader {
 public:
  // Borrows `record`, which must not change during the walk. Begins at unit `first_unit`, where a
  // posting begins.
  PostingReader(const DBDatum& record, bool with_positions, std::size_t first_unit = 0)
      : record_(record),
        units_(record.size / kUnitBytes),
        with_positions_(with_positions),
        next_unit_(first_unit) {}

  // Moves to the next entry.
  //   Returns  false, with `*entry` as it was, if there is none.
  bool Next(Posting* entry) {
    if (next_unit_ >= units_) return false;
    const std::size_t left = units_ - next_unit_;
    entry->first_unit = next_unit_;
    entry->code = UnitAt(record_, next_unit_);
    entry->positions = 0;
    entry->units = 1;
    if (with_positions_ && left >= 2) {
      const std::size_t count = UnitAt(record_, next_unit_ + 1);
      entry->positions = static_cast<std::uint16_t>(std::min(count, left - 2));
      entry->units = 2u + entry->positions;
    }
    next_unit_ += entry->units;
    return true;
  }

 private:
  const DBDatum& record_;
  const std::size_t units_;
  const bool with_positions_;
  std::size_t next_unit_;
};

// Returns all units of the record, codes and counts among them.
UnfilledVector<std::uint16_t> CopyUnits(const DBDatum& record);

// Returns how many documents the record lists.
std::size_t CountPostings(const DBDatum& record, bool with_positions);

// Adds an entry at the end; with `positions` null, one without positions. Not marked dirty here.
//   Returns  false with nothing changed if the record would grow past what gdbm can store. Of more
//            than 65535 positions the first 65535 are kept, for that is what the count can say.
bool AppendPosting(DBDatum* record, Code code, const Positions* positions);

// Takes the positions out of every entry. The buffer keeps its size. Not marked dirty here.
void DropPositions(DBDatum* record);

// Takes out the entries of `codes`; the others keep their order. Not marked dirty here.
//   Returns  whether there were any.
bool PurgePostings(DBDatum* record, const CodeSet& codes, bool with_positions);

// ---- Code arrays: "g-avail" and "g-deleted" ----
//
// Codes side by side. An odd last byte is ignored, and overwritten by the next code.

// Encodes an array of one code, which is also what the code counter looks like.
std::array<char, kUnitBytes> EncodeCode(Code code);

std::size_t CountCodes(const DBDatum& array);
Code CodeAt(const DBDatum& array, std::size_t index);

// Adds every code of `array` to `codes`.
void CollectCodes(const DBDatum& array, CodeSet* codes);

// Adds `code`, or all codes of `more`, at the end. Not marked dirty here.
void AppendCode(DBDatum* array, Code code);
void AppendCodes(DBDatum* array, const DBDatum& more);

// Takes the last code off; there must be one. Not marked dirty here.
Code TakeLastCode(DBDatum* array);

// ---- Code counter: "g-code", the highest code handed out so far, one unit ----

Code DecodeCounter(const DBDatum& record);

// Overwrites the counter in place; a shorter record grows to hold it. Not marked dirty here.
void SetCounter(DBDatum* record, Code code);

// ---- Document record: "d-" and the name; when it was added, and its code ----

std::array<char, kDocumentRecordBytes> EncodeDocument(std::uint32_t timestamp, Code code);
std::uint32_t DocumentTimestamp(const DBDatum& record);
Code DocumentCode(const DBDatum& record);

// Overwrites the timestamp in place; a shorter record grows to its full size.
void SetDocumentTimestamp(DBDatum* record, std::uint32_t timestamp);

// ---- Name record: the key is "c-" and the code, the value is the document's name ----

std::array<char, 2 + kUnitBytes> NameKey(Code code);

// Overwrites the name in place. Not marked dirty here.
void SetName(DBDatum* record, std::string_view name);

// ---- Option flags: "g-opts", 4 bytes ----

std::array<char, 4> EncodeOptions(std::uint32_t flags);
std::uint32_t DecodeOptions(const DBDatum& record);

// Borrows the bytes of an encoded record or key.
template <std::size_t kBytes>
DBDatum AsDatum(const std::array<char, kBytes>& bytes) {
  return {bytes.data(), kBytes};
}

}  // namespace kestan

#endif  // KESTAN_FORMAT_RECORDS_H_
