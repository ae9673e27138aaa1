// SPDX-License-Identifier: GPL-3.0-or-later
// Repairs HTML where libxml2 would drop text or join words.
#ifndef KESTAN_CLI_EXTRACT_HTML_HTML_REPAIR_H_
#define KESTAN_CLI_EXTRACT_HTML_HTML_REPAIR_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns the page `html` (UTF-8) with blanks for control characters, U+FFFD for noncharacters and
// for references to no character, full ends of comments that are closed at once ("<!-->"), and a
// tag that the end of the page cuts as text.
std::string RepairedHtml(std::string_view html);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_HTML_HTML_REPAIR_H_
