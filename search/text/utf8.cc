// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kestan::search {
namespace {

unsigned ByteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// The second byte shows whether a character is encoded in too many bytes, is half of a surrogate
// pair, or is past the last code point.
bool MayFollow(unsigned lead, unsigned second) {
  if (!ContinuesCharacter(static_cast<char>(second))) return false;
  if (lead == 0xe0) return second >= 0xa0;
  if (lead == 0xed) return second < 0xa0;
  if (lead == 0xf0) return second >= 0x90;
  if (lead == 0xf4) return second < 0x90;
  return true;
}

std::size_t BytesAfter(unsigned lead) {
  if (lead >= 0xc2 && lead <= 0xdf) return 2;
  if (lead >= 0xe0 && lead <= 0xef) return 3;
  if (lead >= 0xf0 && lead <= 0xf4) return 4;
  return 0;
}

// Whether `character`, or the byte that is none, may stand in a line for a person: control
// characters are U+0000 to U+001F and U+007F to U+009F.
bool IsPrintable(std::string_view character) {
  const unsigned first = ByteAt(character, 0);
  if (character.size() == 1) return first >= 0x20 && first < 0x7f;
  return first != 0xc2 || ByteAt(character, 1) >= 0xa0;
}

}  // namespace

std::size_t CharacterBytes(std::string_view text) {
  const unsigned lead = ByteAt(text, 0);
  if (lead < 0x80) return 1;
  const std::size_t bytes = BytesAfter(lead);
  if (bytes == 0 || !MayFollow(lead, ByteAt(text, 1))) return 0;
  for (std::size_t i = 2; i < bytes; ++i) {
    if (!ContinuesCharacter(static_cast<char>(ByteAt(text, i)))) return 0;
  }
  return bytes;
}

void AppendCharacter(char32_t code, std::string* text) {
  const auto tail = [code](unsigned shift) {
    return static_cast<char>(0x80 | (code >> shift & 0x3f));
  };
  if (code < 0x80) {
    *text += static_cast<char>(code);
  } else if (code < 0x800) {
    text->append({static_cast<char>(0xc0 | code >> 6), tail(0)});
  } else if (code < 0x10000) {
    text->append({static_cast<char>(0xe0 | code >> 12), tail(6), tail(0)});
  } else {
    text->append({static_cast<char>(0xf0 | code >> 18), tail(12), tail(6), tail(0)});
  }
}

std::size_t FindNonAscii(std::string_view text, std::size_t from) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080u;
  std::uint64_t eight = 0;
  for (; from + sizeof eight <= text.size(); from += sizeof eight) {
    std::memcpy(&eight, text.data() + from, sizeof eight);
    if ((eight & kHighBits) != 0) break;
  }
  while (from < text.size() && static_cast<unsigned char>(text[from]) < 0x80) ++from;
  return from;
}

char32_t TakeCode(std::string_view text, std::size_t* at) {
  const std::size_t bytes = CharacterBytes(text.substr(*at));
  char32_t code = ByteAt(text, (*at)++);
  if (bytes <= 1) return code;
  code &= 0x7fu >> bytes;
  for (std::size_t i = 1; i < bytes; ++i) code = code << 6 | (ByteAt(text, (*at)++) & 0x3f);
  return code;
}

std::size_t FindNonUtf8(std::string_view text, std::size_t from) {
  while ((from = FindNonAscii(text, from)) < text.size()) {
    const std::size_t bytes = CharacterBytes(text.substr(from));
    if (bytes == 0) return from;
    from += bytes;
  }
  return from;
}

std::string Quoted(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string quoted = "'";
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t length = std::max<std::size_t>(CharacterBytes(bytes.substr(at)), 1);
    const std::string_view character = bytes.substr(at, length);
    if (IsPrintable(character)) {
      quoted += character;
    } else {
      for (std::size_t i = 0; i < length; ++i) {
        const unsigned byte = ByteAt(character, i);
        quoted.append({'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]});
      }
    }
    at += length;
  }
  return quoted + "'";
}

}  // namespace kestan::search
