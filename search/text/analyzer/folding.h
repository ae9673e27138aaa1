// SPDX-License-Identifier: GPL-3.0-or-later
// What makes words equal that differ in capitals, accents and the ways to write a letter.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_FOLDING_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_FOLDING_H_

#include <string>

namespace kestan::search {

// Stands between two words that one run of characters folds to: 1/2 for one half.
constexpr char32_t kBetweenWords = U' ';

// Returns the letters and digits of `run` after the case folding of Unicode's compatibility
// characters: Latin, Greek and Cyrillic letters without accents (but the Cyrillic й, ї, ў, ѓ and ќ,
// which are letters of their own), Latin letters beyond ASCII in ASCII where transliteration has
// such (ø: o). Marks of other scripts stay.
//   Throws   TransliterationError, std::bad_alloc.
std::u32string Folded(const std::u16string& run);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_FOLDING_H_
