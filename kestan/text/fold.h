// SPDX-License-Identifier: GPL-3.0-or-later
// Case folding: bit 5 set in every byte, which makes capital ASCII letters lower case (and '@' a
// '`').
#ifndef KESTAN_TEXT_FOLD_H_
#define KESTAN_TEXT_FOLD_H_

#include <kestan/storage/memory/memory.h>

#include <algorithm>
#include <string_view>

namespace kestan {

inline constexpr unsigned char kFoldBit = 0x20;

// Returns whether the byte folds to itself.
inline bool IsFolded(char byte) { return (static_cast<unsigned char>(byte) & kFoldBit) != 0; }

// Returns whether the word folds to itself, so that it is recorded once. Any other word is recorded
// in its folded form too, at the same positions.
inline bool IsFolded(std::string_view word) {
  return std::all_of(word.begin(), word.end(), [](char byte) { return IsFolded(byte); });
}

// Returns the word with every byte folded.
inline String Folded(std::string_view word) {
  String folded(word);
  for (char& byte : folded) byte = static_cast<char>(byte | kFoldBit);
  return folded;
}

}  // namespace kestan

#endif  // KESTAN_TEXT_FOLD_H_
