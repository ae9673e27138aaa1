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

bool AppendPosting(DBDatum* record, Code code, const Positions* positions) {
  const std::size_t count =
      positions == nullptr ? 0 : std::min<std::size_t>(positions->count, USHRT_MAX);
  const std::size_t units = positions == nullptr ? 1 : kUnitsBeforePositions + count;
  const std::size_t had = record->size;
  if (had > kMaxRecordBytes - units * kUnitBytes) return false;
  ResizeWithSlack(record, had + units * kUnitBytes);
  char* bytes = record->data + had;
  StoreUnit(bytes, code);
  if (positions == nullptr) return true;
  StoreUnit(bytes + kUnitBytes, static_cast<std::uint16_t>(count));
  bytes += kUnitsBeforePositions * kUnitBytes;
  for (std::size_t i = 0; i < count; ++i) StoreUnit(bytes + i * kUnitBytes, positions->first[i]);
  return true;
}

void EncodePosting(Code code, const EncodedPositions* positions, String* bytes) {
  const auto append = [bytes](std::uint16_t unit) {
    std::array<char, kUnitBytes> encoded;
    StoreUnit(encoded.data(), unit);
    bytes->append(encoded.data(), encoded.size());
  };
  append(code);
  if (positions == nullptr) return;
  append(static_cast<std::uint16_t>(positions->size()));
  for (const Position position : *positions) append(position);
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
