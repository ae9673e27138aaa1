// Characters that a terminal takes for orders, and bytes that it cannot read.
#ifndef KESTAN_CLI_CONSOLE_CONTROL_H_
#define KESTAN_CLI_CONSOLE_CONTROL_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kestan_cli {

struct Character {
  std::size_t bytes;
  bool is_control;
};

// Returns how `text`, which is not empty, begins: with a character of UTF-8, or with a byte that
// belongs to none. Such bytes are controls, for some terminals take 0x80 to 0x9f for orders. So are
// U+0000 to U+001F, U+007F to U+009F, and those that turn the direction of writing, which make a
// text look like another: U+202A to U+202E and U+2066 to U+2069.
Character FirstCharacter(std::string_view text);

// Returns `text` with what `spell` makes of the bytes of each control in its place.
std::string WithControlsSpelled(std::string_view text,
                                const std::function<std::string(std::string_view)>& spell);

// Returns `json`, a text in JSON without controls below U+0020, with the others as \uXXXX.
std::string WithControlsInJson(std::string_view json);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_CONTROL_H_
