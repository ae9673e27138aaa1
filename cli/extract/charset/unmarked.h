// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes text that does not say in which character set it is.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_UNMARKED_H_
#define KESTAN_CLI_EXTRACT_CHARSET_UNMARKED_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns the byte order mark that is missing at the start of a file that begins with `head`: of
// UTF-16, if every unit is a character of text, NUL bytes are on one side only, and at most half of
// the units are two bytes of ASCII; "" if it is something else, or has its mark.
std::string MissingUtf16Mark(std::string_view head);

// Decodes `bytes`, which have no byte order mark. UTF-8 stays; a few other bytes are Latin-1. Where
// there are many, or escapes of ISO-2022, ICU guesses the character set. `*note` is set if its
// guess is too uncertain, it cannot be loaded, or Latin-1 would hardly have the bytes where they
// stand: then they are taken as Latin-1 all the same. It is never cleared.
std::string FromUnmarked(std::string bytes, std::string* note);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_UNMARKED_H_
