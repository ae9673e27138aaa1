// SPDX-License-Identifier: GPL-3.0-or-later
// The ASCII characters of names, labels and markup, beside those of cli/console/ascii.h.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_ASCII_H_
#define KESTAN_CLI_EXTRACT_CHARSET_ASCII_H_

#include <algorithm>
#include <string_view>

#include "cli/console/ascii.h"

namespace kestan_cli {

inline constexpr std::string_view kHtmlWhiteSpace = " \t\n\f\r";

// Returns `text` without any of `blanks` at its two ends.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks = kWhiteSpace) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_ASCII_H_
