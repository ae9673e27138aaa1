// Keys as parts of a line.
#ifndef KESTAN_TEXT_ESCAPE_H_
#define KESTAN_TEXT_ESCAPE_H_

#include <kestan/storage/memory.h>

#include <string_view>

namespace kestan {

// Spells every byte of `bytes` that is no printable ASCII, and the backslash, as \xHH (digits and
// small letters), so that a line stays a line and every key can be told from every other.
inline String Escaped(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  String text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    if (byte >= ' ' && byte <= '~' && byte != '\\') {
      text += byte;
      continue;
    }
    const unsigned number = static_cast<unsigned char>(byte);
    text += {'\\', 'x', kDigits[number / 16], kDigits[number % 16]};
  }
  return text;
}

}  // namespace kestan

#endif  // KESTAN_TEXT_ESCAPE_H_
