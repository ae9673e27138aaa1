// The characters of UTF-8 text, one by one, beside what <kestan/search/text.h> has of them.
#ifndef KESTAN_SEARCH_TEXT_UTF8_H_
#define KESTAN_SEARCH_TEXT_UTF8_H_

#include <kestan/search/text.h>

#include <cstddef>
#include <string_view>

namespace kestan::search {

inline bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

// Returns where the bytes above 127 begin, at `from` or after; the length of `text` if none is
// left. Reads eight bytes at a time.
std::size_t FindNonAscii(std::string_view text, std::size_t from);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_UTF8_H_
