// SPDX-License-Identifier: GPL-3.0-or-later
// The bytes in which words are stored, all of which the engine's folding leaves as they are.
#ifndef KESTAN_SEARCH_TEXT_ANALYZER_WORD_ENCODING_H_
#define KESTAN_SEARCH_TEXT_ANALYZER_WORD_ENCODING_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan::search {

// The engine folds words by setting bit 5 of each byte, so every byte of a stored word has it. A
// character of ASCII is itself. Any other is a lead byte and digits of five bits, A0 to BF:
//
//   lead      digits  characters
//   E0 to F7  1       U+0370 to U+066F
//   F8 to FD  2       U+0080 to U+036F, then U+0670 to U+1B7F
//   FE        3       U+1B80 to U+9B7F
//   FF        4       U+9B80 to U+109B7F; what lies above is for private use
//
// So a word begins with another one exactly where its bytes begin with those.

// Appends `character` (at most U+109B7F) as it is stored.
void AppendStored(char32_t character, std::string* word);

// Reads the character that `word`, which is not empty, begins with.
//   Returns  how many bytes it takes; 0 if these bytes are none.
std::size_t ReadStored(std::string_view word, char32_t* character);

// Returns `text` with all runs of stored characters beyond ASCII in UTF-8. A run of bytes above 127
// that is not made of stored characters alone stays as it is.
std::string DecodedWords(std::string_view text);

// Returns `utf8` with all characters beyond ASCII as they are stored; bytes that are no UTF-8, and
// characters that cannot be stored, stay as they are.
std::string StoredCharacters(std::string_view utf8);

// Returns the characters of `word`. A byte that is no part of a stored character is one by itself.
std::u32string CharactersOf(std::string_view word);

// Returns how many these are.
std::size_t CountCharacters(std::string_view word);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_ANALYZER_WORD_ENCODING_H_
