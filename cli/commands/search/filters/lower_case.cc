// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/lower_case.h"

#include <kestan/search.h>

#include <clocale>
#include <cstddef>
#include <cwctype>

#include "cli/console/ascii.h"

namespace kestan_cli {
namespace {

using kestan::search::AppendCharacter;
using kestan::search::CharacterBytes;

// The system's table of letters; null for none. Never freed, as it serves to the end.
locale_t Letters() {
  static const locale_t letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return letters;
}

// Returns the character of the `bytes` bytes, 2 to 4, at the start of `text`.
char32_t CharacterAt(std::string_view text, std::size_t bytes) {
  char32_t code = static_cast<unsigned char>(text[0]) & (0x7fU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    code = (code << 6) | (static_cast<unsigned char>(text[i]) & 0x3fU);
  }
  return code;
}

}  // namespace

std::string LowerCaseOfAll(std::string_view utf8) {
  std::string lower;
  lower.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::size_t bytes = CharacterBytes(utf8);
    if (bytes < 2 || Letters() == nullptr) {
      lower += LowerCase(utf8.front());
      utf8.remove_prefix(1);
      continue;
    }
    const auto code = static_cast<wint_t>(CharacterAt(utf8, bytes));
    AppendCharacter(static_cast<char32_t>(towlower_l(code, Letters())), &lower);
    utf8.remove_prefix(bytes);
  }
  return lower;
}

}  // namespace kestan_cli
