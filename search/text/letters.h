// SPDX-License-Identifier: GPL-3.0-or-later
// ASCII letters and their case. Words are indexed in ASCII letters only.
#ifndef KESTAN_SEARCH_TEXT_LETTERS_H_
#define KESTAN_SEARCH_TEXT_LETTERS_H_

#include <algorithm>
#include <string>
#include <string_view>

namespace kestan::search {

inline bool IsCapital(char byte) { return byte >= 'A' && byte <= 'Z'; }

inline bool IsAsciiLetter(char byte) { return IsCapital(byte) || (byte >= 'a' && byte <= 'z'); }

inline bool HasCapital(std::string_view text) {
  return std::any_of(text.begin(), text.end(), IsCapital);
}

// Return `byte`, or `text`, with capitals in lower case whatever the locale; other bytes stay.
inline char LowerCase(char byte) { return IsCapital(byte) ? static_cast<char>(byte | 0x20) : byte; }

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& byte : lower) byte = LowerCase(byte);
  return lower;
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_LETTERS_H_
