// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of record layouts share: plain twins of the readers, and damaged records.
#ifndef KESTAN_TESTS_FORMAT_PLAIN_RECORDS_H_
#define KESTAN_TESTS_FORMAT_PLAIN_RECORDS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestan_tests {

template <std::size_t kBytes>
std::string Text(const std::array<char, kBytes>& bytes) {
  return std::string(bytes.data(), kBytes);
}

// Reads `count` bytes at `offset` as a little-endian number; bytes that are missing count as 0.
inline std::uint32_t PlainNumber(const std::string& record, std::size_t offset, std::size_t count) {
  std::uint32_t number = 0;
  for (std::size_t i = count; i-- > 0;) {
    const std::size_t at = offset + i;
    number = number * 256 + (at < record.size() ? static_cast<unsigned char>(record[at]) : 0);
  }
  return number;
}

// Calls `check` with `good` cut at each byte, with more bytes after it and with each byte changed.
template <typename Check>
void ForEachDamage(const std::string& good, Check check) {
  for (std::size_t size = 0; size <= good.size(); ++size) check(good.substr(0, size));
  check(good + "more");
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = good;
      changed[at] = static_cast<char>(byte);
      check(changed);
    }
  }
}

// Splits a record into units; an odd last byte is none.
inline std::vector<unsigned> UnitsOf(const std::string& record) {
  std::vector<unsigned> units;
  for (std::size_t i = 0; i + 1 < record.size(); i += 2) {
    const unsigned low = static_cast<unsigned char>(record[i]);
    const unsigned high = static_cast<unsigned char>(record[i + 1]);
    units.push_back(low + 256 * high);
  }
  return units;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_FORMAT_PLAIN_RECORDS_H_
