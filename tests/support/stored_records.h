// SPDX-License-Identifier: GPL-3.0-or-later
// The records of a gdbm file, read and written without the library.
#ifndef KESTAN_TESTS_SUPPORT_STORED_RECORDS_H_
#define KESTAN_TESTS_SUPPORT_STORED_RECORDS_H_

#include <gdbm.h>

#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>

namespace kestan_tests {

// Every key of a gdbm file with its value.
using Records = std::map<std::string, std::string>;

// Opens the file at `path` with the `flags` of gdbm_open. Throws if gdbm cannot.
inline GDBM_FILE OpenGdbm(const std::string& path, int flags) {
  constexpr int kBlockBytes = 512;  // of a file that does not exist yet
  GDBM_FILE file = gdbm_open(path.c_str(), kBlockBytes, flags, 0644, nullptr);
  if (file == nullptr) throw std::runtime_error(path + ": " + gdbm_strerror(gdbm_errno));
  return file;
}

// Returns a datum around `bytes`, which must outlive it.
inline datum GdbmDatum(const std::string& bytes) {
  return {const_cast<char*>(bytes.data()), static_cast<int>(bytes.size())};
}

// Copies the bytes of a datum.
inline std::string GdbmBytes(datum bytes) {
  return {bytes.dptr, static_cast<std::size_t>(bytes.dsize)};
}

// Calls `visit` with each key of an open file and its value.
template <typename Visit>
void VisitRecords(GDBM_FILE file, const Visit& visit) {
  datum key = gdbm_firstkey(file);
  while (key.dptr != nullptr) {
    const datum value = gdbm_fetch(file, key);
    visit(key, value);
    std::free(value.dptr);
    const datum next = gdbm_nextkey(file, key);
    std::free(key.dptr);
    key = next;
  }
}

// Reads the file at `path`. No other handle in any process may be writing it.
inline Records Dump(const std::string& path) {
  Records records;
  GDBM_FILE file = OpenGdbm(path, GDBM_READER);
  VisitRecords(file,
               [&records](datum key, datum value) { records[GdbmBytes(key)] = GdbmBytes(value); });
  gdbm_close(file);
  return records;
}

// Writes `records` into the file at `path`, creating it where it is missing. Throws if gdbm cannot.
inline void Plant(const std::string& path, const Records& records) {
  GDBM_FILE file = OpenGdbm(path, GDBM_WRCREAT);
  bool stored = true;
  for (const auto& [key, value] : records) {
    stored = gdbm_store(file, GdbmDatum(key), GdbmDatum(value), GDBM_REPLACE) == 0 && stored;
  }
  gdbm_close(file);
  if (!stored) throw std::runtime_error(path + ": a record was not stored");
}

// Returns a record of 16-bit little-endian units.
inline std::string Units(std::initializer_list<unsigned> units) {
  std::string bytes;
  for (unsigned unit : units) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8 & 0xff);
  }
  return bytes;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_STORED_RECORDS_H_
