// SPDX-License-Identifier: GPL-3.0-or-later
// Finds and escapes control characters, and bytes that are not UTF-8, in text for a terminal.
#ifndef KESTAN_CLI_CONSOLE_CONTROL_CHARACTERS_H_
#define KESTAN_CLI_CONSOLE_CONTROL_CHARACTERS_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kestan_cli {

struct Character {
  std::size_t bytes;
  bool is_control;
  char32_t code;  // U+FFFD for a byte that belongs to none
};

// Returns the first character of `text`, which is not empty. A byte that belongs to no UTF-8
// character counts as one control character: some terminals obey the bytes 0x80 to 0x9f. The other
// control characters are U+0000 to U+001F, U+007F to U+009F, and those that change the direction of
// writing and so disguise a text: U+202A to U+202E and U+2066 to U+2069.
Character FirstCharacter(std::string_view text);

// Returns `text` with each control character replaced by `escape` of its bytes.
std::string EscapeControls(std::string_view text,
                           const std::function<std::string(std::string_view)>& escape);

// Returns `json`, which has no control characters below U+0020, with the others as \uXXXX.
std::string EscapeControlsInJson(std::string_view json);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_CONTROL_CHARACTERS_H_
