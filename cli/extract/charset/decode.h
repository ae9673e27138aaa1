// From the bytes of a text file to UTF-8.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_DECODE_H_
#define KESTAN_CLI_EXTRACT_CHARSET_DECODE_H_

#include <optional>
#include <string>
#include <string_view>

namespace kestan_cli {

// Whether `bytes` begin with the mark of UTF-16, in which text may hold NUL bytes.
bool StartsAsUtf16(std::string_view bytes);

// Whether `bytes` are UTF-16 that breaks off within a unit. A byte too many or too few anywhere in
// it makes other text of all that follows.
bool IsBrokenUtf16(std::string_view bytes);

// Returns `bytes`, which are UTF-8, and what is not taken byte by byte as Latin-1 with the signs
// that Windows adds to it, so that one bad byte does not spoil a text.
std::string Utf8OrLatin1(std::string bytes);

// Reads `bytes` as UTF-16 where they begin with its mark, else as Utf8OrLatin1 does, with
// or without a mark.
//   Returns  the text in UTF-8, without the mark; nothing if it holds a NUL, as no text does.
std::optional<std::string> DecodedText(std::string bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_DECODE_H_
