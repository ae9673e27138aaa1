// SPDX-License-Identifier: GPL-3.0-or-later
// The words of texts, as the index makes them.
#ifndef KESTAN_CLI_EXTRACT_DOCUMENT_WORDS_H_
#define KESTAN_CLI_EXTRACT_DOCUMENT_WORDS_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns the words of `utf8` as they are stored, each followed by a blank.
//   Throws   CommandError.
std::string WordsIn(std::string_view utf8);

// The same without `stop_words`, which are words as they are stored, and without words of one or
// two letters of ASCII. Of "don't", both parts go where "dont" is a stop word.
//   Throws   CommandError.
std::string WordsWithout(std::string_view utf8, std::string_view stop_words);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_DOCUMENT_WORDS_H_
