// SPDX-License-Identifier: GPL-3.0-or-later
// The words of scripts that do not separate them: Thai, Lao, Khmer, Myanmar.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_DICTIONARY_WORDS_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_DICTIONARY_WORDS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace kestan::search {

// Returns where the words of `run` end by ICU's dictionaries, in units of UTF-16 and in order; the
// last one at the end of `run`.
//   Throws   TransliterationError, std::bad_alloc.
std::vector<std::size_t> WordEnds(const std::u16string& run);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_DICTIONARY_WORDS_H_
