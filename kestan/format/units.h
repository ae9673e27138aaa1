// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers that records are made of: little-endian on every machine. Bytes that a record lacks
// read as 0, so that no reader leaves a record, whatever the file holds.
#ifndef KESTAN_FORMAT_UNITS_H_
#define KESTAN_FORMAT_UNITS_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory/memory.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestan {

inline constexpr std::uint32_t kUnitBytes = 2;  // codes, counts and positions are units

// Returns unit `index` of the record, which must hold it whole.
inline std::uint16_t UnitAt(const DBDatum& record, std::size_t index) {
  const char* const bytes = record.data + index * kUnitBytes;
  const unsigned low = static_cast<unsigned char>(bytes[0]);
  const unsigned high = static_cast<unsigned char>(bytes[1]);
  return static_cast<std::uint16_t>(low | high << CHAR_BIT);
}

// Returns whether the record ends within a unit.
inline bool HasOddByte(const DBDatum& record) { return record.size % kUnitBytes != 0; }

// Returns the address of unit `index` of the record.
inline char* UnitAddress(const DBDatum& record, std::size_t index) {
  return record.data + index * kUnitBytes;
}

// Reads `count` bytes at `offset` of a record as one number.
inline std::uint32_t ReadNumber(const DBDatum& record, std::size_t offset, std::size_t count) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < count && offset + i < record.size; ++i) {
    const auto byte = static_cast<unsigned char>(record.data[offset + i]);
    number |= static_cast<std::uint32_t>(byte) << (CHAR_BIT * i);
  }
  return number;
}

// Writes `number` as `count` bytes.
inline void WriteNumber(char* bytes, std::size_t count, std::uint32_t number) {
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(number >> (CHAR_BIT * i));
}

inline void StoreUnit(char* bytes, std::uint16_t unit) { WriteNumber(bytes, kUnitBytes, unit); }

// Gives the record another size. New bytes have no value yet.
inline void Resize(DBDatum* record, std::size_t bytes) {
  record->data = static_cast<char*>(Reallocate(record->data, bytes));
  record->size = static_cast<std::uint32_t>(bytes);
}

// Makes the record at least `bytes` long. New bytes are 0.
inline void GrowTo(DBDatum* record, std::uint32_t bytes) {
  const std::uint32_t had = record->size;
  if (had >= bytes) return;
  Resize(record, bytes);
  std::memset(record->data + had, 0, bytes - had);
}

// Borrows the bytes of an encoded record or key.
template <std::size_t kBytes>
DBDatum AsDatum(const std::array<char, kBytes>& bytes) {
  return {bytes.data(), kBytes};
}

}  // namespace kestan

#endif  // KESTAN_FORMAT_UNITS_H_
