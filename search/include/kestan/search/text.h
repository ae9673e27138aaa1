// SPDX-License-Identifier: GPL-3.0-or-later
// Characters of UTF-8, and words in letters of ASCII: those of index files of class Kestan, and of
// folders from before kestan::search::Analyzer.
//
// Any number of threads may call these functions at once.
#ifndef KESTAN_SEARCH_TEXT_H_
#define KESTAN_SEARCH_TEXT_H_

#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan::search {

// Returns `utf8` in ASCII: "Zürich" becomes "Zurich", "Привет" "Privet". Each Chinese character
// becomes a word between blanks. What has no counterpart in ASCII becomes a blank; bytes that are
// not UTF-8 are taken as Latin-1.
//   Returns  kSystem if ICU cannot be loaded, or has no data for other scripts than ASCII;
//            kOutOfMemory.
KESTAN_SEARCH_EXPORT Result<std::string> ToAscii(std::string_view utf8);

// Keeps the words of `text` (less than 2 GB): runs of ASCII letters, without apostrophes, cut after
// 64 letters, with white space between them. Drops `stop_words`, which are separated by anything
// but letters, and with them all words of one or two letters; "" drops none.
//   Returns  kOutOfMemory.
KESTAN_SEARCH_EXPORT Result<std::string> KeepWords(std::string text,
                                                   const std::string& stop_words = "");

// Returns English words that are too common to tell documents apart, each followed by a blank, in
// lower case and without apostrophes. Of some with an apostrophe the first part is among them too.
KESTAN_SEARCH_EXPORT std::string EnglishStopWords();

// Returns whether `byte` is one of a UTF-8 character's bytes after the first.
inline bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

// Returns how many bytes the UTF-8 character at the start of `text`, which is not empty, has: 1 to
// 4; 0 if there is none.
KESTAN_SEARCH_EXPORT std::size_t CharacterBytes(std::string_view text);

// Adds the UTF-8 bytes of the character `code` (not a surrogate, at most 0x10ffff) to `text`.
KESTAN_SEARCH_EXPORT void AppendCharacter(char32_t code, std::string* text);

// Returns where the first byte at `from` or after is that belongs to no UTF-8 character; the length
// of `text` if there is none.
KESTAN_SEARCH_EXPORT std::size_t FindNonUtf8(std::string_view text, std::size_t from);

// Returns whether all of `text` is UTF-8.
inline bool IsUtf8(std::string_view text) { return FindNonUtf8(text, 0) == text.size(); }

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_H_
