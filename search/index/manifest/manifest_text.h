// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a line of MANIFEST: numbers, checksums, escaped bytes.
#ifndef KESTAN_SEARCH_INDEX_MANIFEST_MANIFEST_TEXT_H_
#define KESTAN_SEARCH_INDEX_MANIFEST_MANIFEST_TEXT_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace kestan::search {

// Appends 16 hexadecimal digits in lower case.
void AppendHex(std::uint64_t number, std::string* text);

// Appends `bytes` without blanks: each byte that is not printable ASCII, and each blank and
// backslash, as \xHH.
void AppendEscaped(std::string_view bytes, std::string* text);

// Reads a line from left to right. Each function goes past what it has read and returns true, or
// returns false and stays.
class LineReader {
 public:
  // Borrows `line`.
  explicit LineReader(std::string_view line) : rest_(line) {}

  bool empty() const { return rest_.empty(); }

  bool Skip(std::string_view text);

  // Reads decimal digits: a number below 2 to the power of 64.
  bool ReadNumber(std::uint64_t* number);

  // Reads what AppendHex() appends.
  bool ReadHex(std::uint64_t* number);

  // Reads what AppendEscaped() appends, to the next blank or the end.
  bool ReadEscaped(std::string* bytes);

 private:
  std::string_view rest_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_MANIFEST_MANIFEST_TEXT_H_
