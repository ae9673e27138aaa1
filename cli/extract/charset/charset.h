// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes the character sets that web pages name.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_CHARSET_H_
#define KESTAN_CLI_EXTRACT_CHARSET_CHARSET_H_

#include <optional>
#include <string>
#include <string_view>

namespace kestan_cli {

// Returns whether `label` names Latin-1: the label that pages in UTF-8 most often bear by mistake.
bool IsLatin1Label(std::string_view label);

// Decodes `bytes` as the character set `label`, whose case does not matter. Labels mean what they
// mean to browsers: gb2312 is GBK, shift_jis is Windows-31J, iso-8859-1 and us-ascii are
// windows-1252. Invalid bytes become U+FFFD, but ASCII bytes among them stay.
//   Returns  the text in UTF-8. Nothing if the label cannot be right: it is unknown; it stands for
//            UTF-16 or another encoding without plain ASCII; or it stands for an encoding that
//            shifts between alphabets (UTF-7, HZ) and `bytes` are invalid in it.
//   Throws   SkipFile if ICU lacks an encoding of the web or cannot be loaded, bad_alloc if it has
//            no memory.
std::optional<std::string> FromCharset(std::string_view label, std::string_view bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_CHARSET_H_
