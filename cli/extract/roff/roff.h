// SPDX-License-Identifier: GPL-3.0-or-later
// Extracts the text of manual pages and of other documents in roff.
#ifndef KESTAN_CLI_EXTRACT_ROFF_ROFF_H_
#define KESTAN_CLI_EXTRACT_ROFF_ROFF_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns whether `extension` is that of a section of the manual ("1", "3p", "1ssl"), or of roff.
bool IsExtensionOfRoff(std::string_view extension);

// Returns whether a file named `name`, which begins with `head`, is written in roff: it is named as
// manual pages are ("ls.1", "printf.3p", "x.man"), and its first line with text is a request.
bool IsRoff(std::string_view name, std::string_view head);

// Returns the text of the document `roff` (UTF-8), without requests, macros and escapes: good to
// search in, not to print. The title of a manual page, "ls(1) - list directory contents", becomes
// its first line.
std::string TextOfRoff(std::string_view roff);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_ROFF_ROFF_H_
