// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/control_characters.h"

#include <kestan/search.h>

namespace kestan_cli {
namespace {

using kestan::search::CharacterBytes;

unsigned ByteAt(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

char32_t CodeOf(std::string_view character) {
  if (character.size() == 1) return ByteAt(character, 0);
  char32_t code = ByteAt(character, 0) & (0x7fU >> character.size());
  for (std::size_t at = 1; at < character.size(); ++at) {
    code = code << 6 | (ByteAt(character, at) & 0x3fU);
  }
  return code;
}

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7f && code <= 0x9f) || (code >= 0x202a && code <= 0x202e) ||
         (code >= 0x2066 && code <= 0x2069);
}

std::string AsJson(std::string_view control) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const char32_t code = CodeOf(control);
  std::string escaped = "\\u";
  for (const unsigned shift : {12U, 8U, 4U, 0U}) escaped += kDigits[code >> shift & 15];
  return escaped;
}

}  // namespace

Character FirstCharacter(std::string_view text) {
  const std::size_t bytes = CharacterBytes(text);
  if (bytes == 0) return {1, true, 0xfffd};
  const char32_t code = CodeOf(text.substr(0, bytes));
  return {bytes, IsControl(code), code};
}

std::string EscapeControls(std::string_view text,
                           const std::function<std::string(std::string_view)>& escape) {
  std::string escaped;
  while (!text.empty()) {
    const Character first = FirstCharacter(text);
    const std::string_view bytes = text.substr(0, first.bytes);
    if (first.is_control) {
      escaped += escape(bytes);
    } else {
      escaped += bytes;
    }
    text.remove_prefix(first.bytes);
  }
  return escaped;
}

std::string EscapeControlsInJson(std::string_view json) { return EscapeControls(json, AsJson); }

}  // namespace kestan_cli
