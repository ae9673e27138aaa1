// SPDX-License-Identifier: GPL-3.0-or-later
// The escapes of roff, which begin with a backslash.
#ifndef KESTAN_CLI_EXTRACT_ROFF_ROFF_ESCAPES_H_
#define KESTAN_CLI_EXTRACT_ROFF_ROFF_ESCAPES_H_

#include <map>
#include <string>
#include <string_view>

namespace kestan_cli {

using RoffStrings = std::map<std::string, std::string, std::less<>>;  // by name; plain text

// Returns `text` with the characters that its escapes stand for, and without those that stand for
// none. `\*` takes its text from `strings`.
std::string WithoutEscapes(std::string_view text, const RoffStrings& strings);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_ROFF_ROFF_ESCAPES_H_
