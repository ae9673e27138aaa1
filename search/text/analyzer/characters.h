// SPDX-License-Identifier: GPL-3.0-or-later
// Which characters words are made of.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_CHARACTERS_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_CHARACTERS_H_

#include <cstdint>

namespace kestan::search {

enum class CharacterClass : std::uint8_t {
  kOther,     // stands between words
  kLetter,    // a letter or a digit
  kMark,      // belongs to the character before it: an accent, a soft hyphen, a joiner
  kPaired,    // Chinese characters and Japanese syllables, which are indexed in pairs
  kUnspaced,  // Thai, Lao, Khmer and Myanmar, whose words a dictionary tells apart
};

// Returns the class of the character `code`, which is beyond ASCII. An apostrophe stands between
// words, in whatever form.
//   Throws   TransliterationError, if ICU cannot be loaded.
CharacterClass ClassOf(char32_t code);

// Returns whether `code` is one of the common characters of kPaired, which fold to themselves.
inline bool IsCommonPaired(char32_t code) {
  return (code >= 0x4e00 && code <= 0x9fff) || (code >= 0x3400 && code <= 0x4dbf) ||
         (code >= 0x3041 && code <= 0x3096) || (code >= 0x30a1 && code <= 0x30fa) || code == 0x30fc;
}

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_CHARACTERS_H_
