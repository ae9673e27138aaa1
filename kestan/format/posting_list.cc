// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/posting_list.h>

#include <endian.h>
#include <malloc.h>

#include <climits>
#include <cstring>

namespace kestan {
namespace {

constexpr std::uint32_t kMaxRecordBytes = INT_MAX;  // gdbm counts in a signed int

// Resizes a record that will grow again and again.
void ResizeWithSlack(DBDatum* record, std::size_t bytes) {
  if (malloc_usable_size(record->data) < bytes) {
    std::size_t roomy = std::min<std::size_t>(bytes + bytes / 4, kMaxRecordBytes);
    record->data = static_cast<char*>(ReallocateWithSlack(record->data, bytes, &roomy));
  }
  record->size = static_cast<std::uint32_t>(bytes);
}

// Writes what stands before the positions of a posting.
//   Returns  where they go.
char* StoreHead(char* bytes, Code code, std::size_t positions) {
  StoreUnit(bytes, code);
  StoreUnit(bytes + kUnitBytes, static_cast<std::uint16_t>(positions));
  return bytes + kUnitsBeforePositions * kUnitBytes;
}

}  // namespace

UnfilledVector<std::uint16_t> CopyUnits(const DBDatum& record) {
  UnfilledVector<std::uint16_t> units(record.size / kUnitBytes);
  if (units.empty()) return units;
  std::memcpy(units.data(), record.data, units.size() * kUnitBytes);
  for (std::uint16_t& unit : units) unit = le16toh(unit);
  return units;
}

std::size_t CountPostings(const DBDatum& record, bool with_positions) {
  if (!with_positions) return record.size / kUnitBytes;
  PostingReader reader(record, with_positions);
  Posting posting;
  std::size_t count = 0;
  while (reader.Next(&posting)) ++count;
  return count;
}

void StorePosting(char* bytes, Code code, const Positions& positions) {
  const std::size_t count = std::min(positions.count, kMostPositions);
  char* next = StoreHead(bytes, code, count);
  for (std::size_t i = 0; i < count; ++i, next += kUnitBytes) StoreUnit(next, positions.first[i]);
}

void StorePosting(char* bytes, Code code, const EncodedPositions& positions) {
  const std::size_t count = std::min(positions.size(), kMostPositions);
  char* const first = StoreHead(bytes, code, count);
  if (count != 0) std::memcpy(first, positions.bytes().data(), count * kUnitBytes);
}

bool AppendPosting(DBDatum* record, Code code, const Positions* positions) {
  const std::size_t bytes = positions == nullptr ? kUnitBytes : PostingBytes(positions->count);
  const std::size_t had = record->size;
  if (had > kMaxRecordBytes - bytes) return false;
  ResizeWithSlack(record, had + bytes);
  char* const posting = record->data + had;
  if (positions == nullptr) {
    StoreUnit(posting, code);
  } else {
    StorePosting(posting, code, *positions);
  }
  return true;
}

void EncodePosting(Code code, const EncodedPositions* positions, String* bytes) {
  const std::size_t had = bytes->size();
  bytes->resize(had + (positions == nullptr ? kUnitBytes : PostingBytes(positions->size())));
  if (positions == nullptr) {
    StoreUnit(bytes->data() + had, code);
  } else {
    StorePosting(bytes->data() + had, code, *positions);
  }
}

void DropPositions(DBDatum* record) {
  PostingReader reader(*record, true);
  Posting posting;
  std::uint32_t kept = 0;
  while (reader.Next(&posting)) StoreUnit(UnitAddress(*record, kept++), posting.code);
  record->size = kept * kUnitBytes;
}

bool PurgePostings(DBDatum* record, const CodeSet& codes, bool with_positions) {
  PostingReader reader(*record, with_positions);
  Posting posting;
  std::size_t kept_units = 0;
  std::size_t read_units = 0;
  while (reader.Next(&posting)) {
    read_units += posting.units;
    if (codes[posting.code]) continue;
    std::memmove(UnitAddress(*record, kept_units), UnitAddress(*record, posting.first_unit),
                 posting.units * kUnitBytes);
    kept_units += posting.units;
  }
  if (kept_units == read_units) return false;
  record->size = static_cast<std::uint32_t>(kept_units * kUnitBytes);
  return true;
}

}  // namespace kestan
