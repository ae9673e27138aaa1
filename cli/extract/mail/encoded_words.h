// SPDX-License-Identifier: GPL-3.0-or-later
// The encodings of mail: of its parts, and of the words in its headers.
#ifndef KESTAN_CLI_EXTRACT_MAIL_ENCODED_WORDS_H_
#define KESTAN_CLI_EXTRACT_MAIL_ENCODED_WORDS_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Decodes `bytes` as the character set `charset`, which a message declares; "" for none. A byte
// order mark counts more. Text that is said to be Latin-1 and is UTF-8 is taken as UTF-8.
//   Returns  UTF-8.
//   Throws   SkipFile if ICU cannot be loaded.
std::string FromMailCharset(std::string_view charset, std::string bytes);

// Returns the header `raw` in UTF-8, with words such as "=?koi8-r?B?8NLJ18XU?=" decoded. What is
// not of that form stays as it is.
std::string DecodedHeader(std::string_view raw);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_MAIL_ENCODED_WORDS_H_
