// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes the bytes of a text file.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_DECODE_H_
#define KESTAN_CLI_EXTRACT_CHARSET_DECODE_H_

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kestan_cli {

// Returns whether `bytes` begin with the byte order mark of UTF-16, whose text may hold NUL bytes.
bool StartsAsUtf16(std::string_view bytes);

// Returns whether `bytes` are UTF-16 of an odd length. A byte too many or too few anywhere garbles
// all the text after it.
bool IsBrokenUtf16(std::string_view bytes);

// Decodes `bytes`: as UTF-16 if they begin with its byte order mark, as UTF-8 with Latin-1 in it if
// they begin with that of UTF-8, else as FromUnmarked does.
//   Returns  the text in UTF-8, without a byte order mark; nothing if it holds a NUL, which
//            no text does. `*note` is set as FromUnmarked() does.
std::optional<std::string> DecodedText(std::string bytes, std::string* note);
inline std::optional<std::string> DecodedText(std::string bytes) {
  std::string note;
  return DecodedText(std::move(bytes), &note);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_DECODE_H_
