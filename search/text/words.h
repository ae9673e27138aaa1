// From text to the words that are indexed.
#ifndef KESTAN_SEARCH_TEXT_WORDS_H_
#define KESTAN_SEARCH_TEXT_WORDS_H_

#include <string>

namespace kestan::search {

// Keeps the words of `text` (less than 2 GB): runs of ASCII letters, without apostrophes, cut after
// 64 letters, with white space between them. Documents and queries go through it alike. Drops
// `stop_words`, which are separated by anything but letters, and with them all words of one or two
// letters; "" drops none.
std::string CleanWords(std::string text, const std::string& stop_words = "");

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_WORDS_H_
