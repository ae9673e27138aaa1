// SPDX-License-Identifier: GPL-3.0-or-later
// Writing any script in ASCII letters, so that words with accents are found without them.
#ifndef KESTAN_SEARCH_TEXT_TRANSLITERATE_H_
#define KESTAN_SEARCH_TEXT_TRANSLITERATE_H_

#include <stdexcept>
#include <string>
#include <string_view>

namespace kestan::search {

// ICU has no data for other scripts than ASCII.
class TransliterationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Returns `utf8` in ASCII: "Zürich" becomes "Zurich", "Привет" "Privet". Used for documents and
// queries alike. Each Chinese character becomes a word between blanks. What has no counterpart in
// ASCII becomes a blank; bytes that are not UTF-8 are taken as Latin-1. ASCII comes back as it is,
// at the speed of copying. Any number of threads may call it at once.
//   Throws   TransliterationError, std::bad_alloc.
std::string Transliterated(std::string_view utf8);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_TRANSLITERATE_H_
