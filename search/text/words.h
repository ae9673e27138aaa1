// SPDX-License-Identifier: GPL-3.0-or-later
// From text to the words that are indexed.
#ifndef KESTAN_SEARCH_TEXT_WORDS_H_
#define KESTAN_SEARCH_TEXT_WORDS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// Longer words are cut, as the engine cuts them.
constexpr std::size_t kMaxWordLetters = 64;

// Keeps the words of `text` (less than 2 GB): runs of ASCII letters, without apostrophes, cut after
// kMaxWordLetters, with white space between them. Used for documents and queries alike. Drops
// `stop_words`, which are separated by anything but letters, and with them all words of one or two
// letters; "" drops none.
std::string CleanWords(std::string text, const std::string& stop_words = "");

// Returns the words of `utf8` as documents have them: transliterated and cleaned.
std::vector<std::string> IndexedWords(std::string_view utf8);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_WORDS_H_
