#include "cli/export/latin1.h"

#include <cstddef>

namespace kestan_cli {
namespace {

unsigned ByteAt(std::string_view text, std::size_t index) {
  return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

bool IsIn(unsigned byte, unsigned low, unsigned high) { return low <= byte && byte <= high; }

// Returns how many bytes the character at the start of `text` takes; 0 if there is none.
std::size_t CharacterBytes(std::string_view text) {
  const unsigned first = ByteAt(text, 0);
  if (first < 0x80) return 1;
  // The second byte keeps out overlong forms, surrogates, and what is above U+10FFFF.
  const unsigned low = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;
  const unsigned high = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf;
  if (!IsIn(first, 0xc2, 0xf4) || !IsIn(ByteAt(text, 1), low, high)) return 0;
  const std::size_t bytes = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
  for (std::size_t i = 2; i < bytes; ++i) {
    if (!IsIn(ByteAt(text, i), 0x80, 0xbf)) return 0;
  }
  return bytes;
}

}  // namespace

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t bytes = CharacterBytes(text);
    if (bytes == 0) return false;
    text.remove_prefix(bytes);
  }
  return true;
}

std::string ToUtf8(std::string_view text, bool* was_latin1) {
  if (IsUtf8(text)) return std::string(text);
  *was_latin1 = true;
  std::string converted;
  for (const char each : text) {
    const unsigned byte = static_cast<unsigned char>(each);
    if (byte < 0x80) {
      converted += each;
    } else {
      converted += {static_cast<char>(0xc0 | byte >> 6), static_cast<char>(0x80 | (byte & 0x3f))};
    }
  }
  return converted;
}

}  // namespace kestan_cli
