// SPDX-License-Identifier: GPL-3.0-or-later
// Records built from what they mean, and texts of many words, for the tests of indexing and
// query.
#ifndef KESTAN_TESTS_INDEXING_PLANTING_H_
#define KESTAN_TESTS_INDEXING_PLANTING_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/index_test.h"

namespace kestan_tests {

using Numbers = std::vector<unsigned>;

// Returns the numbers from `first` to `last`, both included.
inline Numbers From(unsigned first, unsigned last) {
  Numbers numbers;
  for (unsigned number = first; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

// Returns a packed array of codes.
inline std::string Codes(const Numbers& codes) {
  std::string bytes;
  for (unsigned code : codes) bytes += Units({code});
  return bytes;
}

// Returns the bytes of one posting with positions.
inline std::string EncodedPosting(unsigned code, const Numbers& positions) {
  return Units({code, static_cast<unsigned>(positions.size())}) + Codes(positions);
}

// Returns the key of the name record of `code`.
inline std::string NameKey(unsigned code) { return "c-" + Units({code}); }

// Returns the bytes of a document record.
inline std::string DocumentRecord(std::uint32_t timestamp, unsigned code) {
  return Units({timestamp & 0xffff, timestamp >> 16, code, 0});
}

// Reads the timestamp out of a document record.
inline std::uint32_t TimestampOf(const std::string& record) {
  std::uint32_t timestamp = 0;
  for (int i = 3; i >= 0; --i) {
    timestamp = timestamp << 8 | static_cast<unsigned char>(record.at(static_cast<std::size_t>(i)));
  }
  return timestamp;
}

// Returns the two records that tie a document's name to its code.
inline Records Document(const std::string& name, unsigned code, std::uint32_t timestamp = 1000) {
  return {{"d-" + name, DocumentRecord(timestamp, code)}, {NameKey(code), name}};
}

// Returns the records of both; where they share a key, that of `first`.
inline Records operator+(Records first, const Records& second) {
  first.insert(second.begin(), second.end());
  return first;
}

// Returns `count` copies of `piece`, one after the other.
inline std::string Times(std::size_t count, std::string_view piece) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += piece;
  return all;
}

// The option flags of an index that keeps no positions, and of one that keeps them.
inline const std::string kNoPositions = Units({1, 0});
inline const std::string kPositions = Units({0, 0});

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_INDEXING_PLANTING_H_
