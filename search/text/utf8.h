// SPDX-License-Identifier: GPL-3.0-or-later
// The characters of UTF-8 text, one by one, beside what <kestan/search/text.h> has of them.
#ifndef KESTAN_SEARCH_TEXT_UTF8_H_
#define KESTAN_SEARCH_TEXT_UTF8_H_

#include <kestan/search/text.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan::search {

inline bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

// Returns where the bytes above 127 begin, at `from` or after; the length of `text` if none is
// left. Reads eight bytes at a time.
std::size_t FindNonAscii(std::string_view text, std::size_t from);

// Returns the code of the character at `*at`, which is inside `text`, and moves `*at` past it. A
// byte that belongs to no character is taken as one of Latin-1.
char32_t TakeCode(std::string_view text, std::size_t* at);

// Returns `bytes`, such as a document's name, in quotes, as a message shows them: one line of
// UTF-8. Each byte of a control character, and each that is not UTF-8, is \xHH.
std::string Quoted(std::string_view bytes);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_UTF8_H_
