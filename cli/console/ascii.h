// SPDX-License-Identifier: GPL-3.0-or-later
// The letters and the white space of ASCII.
#ifndef KESTAN_CLI_CONSOLE_ASCII_H_
#define KESTAN_CLI_CONSOLE_ASCII_H_

#include <string>
#include <string_view>

namespace kestan_cli {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

inline bool IsWhiteSpace(char byte) { return kWhiteSpace.find(byte) != std::string_view::npos; }

inline bool IsCapital(char byte) { return byte >= 'A' && byte <= 'Z'; }

inline bool IsAsciiLetter(char byte) { return IsCapital(byte) || (byte >= 'a' && byte <= 'z'); }

// Return `byte`, or `text`, with capitals in lower case whatever the locale; other bytes stay.
inline char LowerCase(char byte) { return IsCapital(byte) ? static_cast<char>(byte | 0x20) : byte; }

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& byte : lower) byte = LowerCase(byte);
  return lower;
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_ASCII_H_
