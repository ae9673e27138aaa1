// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes as printable ASCII text.
#ifndef KESTAN_TEXT_ESCAPE_H_
#define KESTAN_TEXT_ESCAPE_H_

#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <string_view>

namespace kestan {

inline constexpr char kEscape = '\\';
inline constexpr std::string_view kHexDigits = "0123456789abcdef";
inline constexpr std::size_t kEscapedByteBytes = 4;  // of \xHH

// Returns whether the byte stands for itself: it is printable ASCII and no backslash.
inline bool IsPlain(char byte) { return byte >= ' ' && byte <= '~' && byte != kEscape; }

// Appends the byte as \xHH, with lower-case digits.
inline void AppendEscape(char byte, String* text) {
  const unsigned number = static_cast<unsigned char>(byte);
  *text += {kEscape, 'x', kHexDigits[number / 16], kHexDigits[number % 16]};
}

// Returns `bytes` with every byte escaped that is not plain. So a line stays a line, and no two
// keys look the same.
inline String Escaped(std::string_view bytes) {
  String text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    if (IsPlain(byte)) {
      text += byte;
    } else {
      AppendEscape(byte, &text);
    }
  }
  return text;
}

}  // namespace kestan

#endif  // KESTAN_TEXT_ESCAPE_H_
