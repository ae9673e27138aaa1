// The encodings that web pages name, under the names that the web has for them.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_CHARSET_H_
#define KESTAN_CLI_EXTRACT_CHARSET_CHARSET_H_

#include <optional>
#include <string>
#include <string_view>

namespace kestan_cli {

// Whether `label` is one of the names of Latin-1, which pages in UTF-8 carry by mistake more often
// than any other.
bool IsLatin1Label(std::string_view label);

// Reads `bytes` in the encoding `label`, in capital or small letters. Names mean what they mean to
// browsers: gb2312 is GBK, shift_jis is Windows-31J, iso-8859-1 and us-ascii are windows-1252. What
// the encoding does not know becomes U+FFFD, and the ASCII bytes among it stay.
//   Returns  the text in UTF-8. Nothing where the label cannot be right: it is unknown, says UTF-16
//            or another encoding that does not hold ASCII as it is, or names one that shifts
//            between alphabets (UTF-7, HZ) and that `bytes` break.
//   Throws   SkipFile if ICU cannot read an encoding of the web, std::bad_alloc if it has no
//   memory.
std::optional<std::string> FromCharset(std::string_view label, std::string_view bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_CHARSET_H_
