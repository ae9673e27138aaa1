// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes bytes that are not UTF-8 as Latin-1.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_LATIN1_H_
#define KESTAN_CLI_EXTRACT_CHARSET_LATIN1_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns the text of a file in UTF-8. Each byte that belongs to no UTF-8 character is taken for
// Latin-1, or from 0x80 to 0x9f for windows-1252; so one bad byte does not spoil a text.
std::string Utf8OrLatin1(std::string bytes);

// Returns a text of an index in UTF-8: `text` itself if all of it is UTF-8. Else every byte is
// taken for Latin-1, and `*was_latin1` is set; it is never cleared.
std::string Utf8OrAllLatin1(std::string_view text, bool* was_latin1);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_LATIN1_H_
