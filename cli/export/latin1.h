// Texts for those who take nothing but UTF-8.
#ifndef KESTAN_CLI_EXPORT_LATIN1_H_
#define KESTAN_CLI_EXPORT_LATIN1_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Tells whether `text` is UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool IsUtf8(std::string_view text);

// Returns `text` as it is if it is UTF-8; otherwise every byte as the character of Latin-1, and
// sets `*was_latin1`, which it never clears.
std::string ToUtf8(std::string_view text, bool* was_latin1);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_LATIN1_H_
