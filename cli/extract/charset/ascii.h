// The ASCII characters of names, labels and markup.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_ASCII_H_
#define KESTAN_CLI_EXTRACT_CHARSET_ASCII_H_

#include <algorithm>
#include <string>
#include <string_view>

namespace kestan_cli {

inline constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
inline constexpr std::string_view kHtmlWhiteSpace = " \t\n\f\r";

inline bool IsAsciiLetter(char byte) {
  const char lower = static_cast<char>(byte | 0x20);
  return lower >= 'a' && lower <= 'z';
}

// Returns `text` with A-Z in lower case. Other bytes stay.
inline std::string AsciiLower(std::string_view text) {
  std::string lower(text);
  for (char& byte : lower) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte | 0x20);
  }
  return lower;
}

// Returns `text` without any of `blanks` at its two ends.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks = kWhiteSpace) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_ASCII_H_
