#include <kestan/format/keys.h>
#include <kestan/format/records.h>

#include <endian.h>
#include <malloc.h>

#include <algorithm>
#include <climits>
#include <cstring>

namespace kestan {
namespace {

constexpr std::uint32_t kMaxRecordBytes = INT_MAX;  // gdbm counts in a signed int

// Reads `count` bytes at `offset` of a record as one number.
std::uint32_t ReadNumber(const DBDatum& record, std::size_t offset, std::size_t count) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < count && offset + i < record.size; ++i) {
    const auto byte = static_cast<unsigned char>(record.data[offset + i]);
    number |= static_cast<std::uint32_t>(byte) << (CHAR_BIT * i);
  }
  return number;
}

void WriteNumber(char* bytes, std::size_t count, std::uint32_t number) {
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(number >> (CHAR_BIT * i));
}

void StoreUnit(char* bytes, std::uint16_t unit) { WriteNumber(bytes, kUnitBytes, unit); }

char* UnitAddress(const DBDatum& record, std::size_t unit) {
  return record.data + unit * kUnitBytes;
}

void Resize(DBDatum* record, std::size_t bytes) {
  record->data = static_cast<char*>(Reallocate(record->data, bytes));
  record->size = static_cast<std::uint32_t>(bytes);
}

// Resizes a record that will grow again and again.
void ResizeWithSlack(DBDatum* record, std::size_t bytes) {
  if (malloc_usable_size(record->data) < bytes) {
    std::size_t roomy = std::min<std::size_t>(bytes + bytes / 4, kMaxRecordBytes);
    record->data = static_cast<char*>(ReallocateWithSlack(record->data, bytes, &roomy));
  }
  record->size = static_cast<std::uint32_t>(bytes);
}

// Makes the record at least `bytes` long; what is new is 0.
void GrowTo(DBDatum* record, std::uint32_t bytes) {
  const std::uint32_t had = record->size;
  if (had >= bytes) return;
  Resize(record, bytes);
  std::memset(record->data + had, 0, bytes - had);
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
  Posting entry;
  std::size_t count = 0;
  while (reader.Next(&entry)) ++count;
  return count;
}

bool AppendPosting(DBDatum* record, Code code, const Positions* positions) {
  const std::size_t count =
      positions == nullptr ? 0 : std::min<std::size_t>(positions->count, USHRT_MAX);
  const std::size_t units = positions == nullptr ? 1 : 2 + count;
  const std::size_t had = record->size;
  if (had > kMaxRecordBytes - units * kUnitBytes) return false;
  ResizeWithSlack(record, had + units * kUnitBytes);
  char* bytes = record->data + had;
  StoreUnit(bytes, code);
  if (positions == nullptr) return true;
  StoreUnit(bytes + kUnitBytes, static_cast<std::uint16_t>(count));
  bytes += std::size_t{2} * kUnitBytes;
  for (std::size_t i = 0; i < count; ++i) StoreUnit(bytes + i * kUnitBytes, positions->first[i]);
  return true;
}

void DropPositions(DBDatum* record) {
  PostingReader reader(*record, true);
  Posting entry;
  std::uint32_t kept = 0;
  while (reader.Next(&entry)) StoreUnit(UnitAddress(*record, kept++), entry.code);
  record->size = kept * kUnitBytes;
}

bool PurgePostings(DBDatum* record, const CodeSet& codes, bool with_positions) {
  PostingReader reader(*record, with_positions);
  Posting entry;
  std::size_t kept_units = 0;
  std::size_t read_units = 0;
  while (reader.Next(&entry)) {
    read_units += entry.units;
    if (codes[entry.code]) continue;
    std::memmove(UnitAddress(*record, kept_units), UnitAddress(*record, entry.first_unit),
                 entry.units * kUnitBytes);
    kept_units += entry.units;
  }
  if (kept_units == read_units) return false;
  record->size = static_cast<std::uint32_t>(kept_units * kUnitBytes);
  return true;
}

std::array<char, kUnitBytes> EncodeCode(Code code) {
  std::array<char, kUnitBytes> bytes;
  StoreUnit(bytes.data(), code);
  return bytes;
}

std::size_t CountCodes(const DBDatum& array) { return array.size / kUnitBytes; }

Code CodeAt(const DBDatum& array, std::size_t index) { return UnitAt(array, index); }

void CollectCodes(const DBDatum& array, CodeSet* codes) {
  for (std::size_t i = 0; i < CountCodes(array); ++i) codes->set(CodeAt(array, i));
}

void AppendCode(DBDatum* array, Code code) {
  const std::size_t count = CountCodes(*array);
  Resize(array, (count + 1) * kUnitBytes);
  StoreUnit(UnitAddress(*array, count), code);
}

void AppendCodes(DBDatum* array, const DBDatum& more) {
  const std::size_t count = CountCodes(*array);
  const std::size_t added = CountCodes(more);
  Resize(array, (count + added) * kUnitBytes);
  if (added != 0) std::memcpy(UnitAddress(*array, count), more.data, added * kUnitBytes);
}

Code TakeLastCode(DBDatum* array) {
  const std::size_t last = CountCodes(*array) - 1;
  array->size = static_cast<std::uint32_t>(last * kUnitBytes);
  return UnitAt(*array, last);
}

Code DecodeCounter(const DBDatum& record) {
  return static_cast<Code>(ReadNumber(record, 0, kUnitBytes));
}

void SetCounter(DBDatum* record, Code code) {
  GrowTo(record, kUnitBytes);
  StoreUnit(record->data, code);
}

std::array<char, kDocumentRecordBytes> EncodeDocument(std::uint32_t timestamp, Code code) {
  std::array<char, kDocumentRecordBytes> bytes;
  WriteNumber(bytes.data(), kTimestampBytes, timestamp);
  WriteNumber(bytes.data() + kTimestampBytes, kDocumentRecordBytes - kTimestampBytes, code);
  return bytes;
}

std::uint32_t DocumentTimestamp(const DBDatum& record) {
  return ReadNumber(record, 0, kTimestampBytes);
}

Code DocumentCode(const DBDatum& record) {
  return static_cast<Code>(ReadNumber(record, kTimestampBytes, kUnitBytes));
}

void SetDocumentTimestamp(DBDatum* record, std::uint32_t timestamp) {
  GrowTo(record, kDocumentRecordBytes);
  WriteNumber(record->data, kTimestampBytes, timestamp);
}

std::array<char, 2 + kUnitBytes> NameKey(Code code) {
  std::array<char, 2 + kUnitBytes> key{kNameFamily[0], kNameFamily[1]};
  StoreUnit(key.data() + 2, code);
  return key;
}

void SetName(DBDatum* record, std::string_view name) {
  Resize(record, name.size());
  if (!name.empty()) std::memcpy(record->data, name.data(), name.size());
}

std::array<char, 4> EncodeOptions(std::uint32_t flags) {
  std::array<char, 4> bytes;
  WriteNumber(bytes.data(), bytes.size(), flags);
  return bytes;
}

std::uint32_t DecodeOptions(const DBDatum& record) { return ReadNumber(record, 0, 4); }

}  // namespace kestan
