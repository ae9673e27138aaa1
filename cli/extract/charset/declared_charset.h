// SPDX-License-Identifier: GPL-3.0-or-later
// The character set that a page declares.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_DECLARED_CHARSET_H_
#define KESTAN_CLI_EXTRACT_CHARSET_DECLARED_CHARSET_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Returns the character sets that the page `html` declares, in the order of trust: those of its
// meta elements as they come, then that of an XML declaration. Comments, scripts and styles are
// skipped.
std::vector<std::string> DeclaredCharsets(std::string_view html);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_DECLARED_CHARSET_H_
