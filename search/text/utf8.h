// The characters of UTF-8 text, one by one.
#ifndef KESTAN_SEARCH_TEXT_UTF8_H_
#define KESTAN_SEARCH_TEXT_UTF8_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan::search {

inline bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

// Returns whether `byte` is one of a character's bytes after the first.
inline bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

// Returns how many bytes the UTF-8 character at the start of `text`, which is not empty, has: 1 to
// 4; 0 if there is none.
std::size_t CharacterBytes(std::string_view text);

// Adds the UTF-8 bytes of the character `code` (not a surrogate, at most 0x10ffff) to `text`.
void AppendCharacter(char32_t code, std::string* text);

// Returns where the bytes above 127 begin, at `from` or after; the length of `text` if none is
// left. Reads eight bytes at a time.
std::size_t FindNonAscii(std::string_view text, std::size_t from);

// Returns where the first byte at `from` or after is that belongs to no UTF-8 character; the length
// of `text` if there is none.
std::size_t FindNonUtf8(std::string_view text, std::size_t from);

// Returns whether all of `text` is UTF-8.
inline bool IsUtf8(std::string_view text) { return FindNonUtf8(text, 0) == text.size(); }

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_UTF8_H_
