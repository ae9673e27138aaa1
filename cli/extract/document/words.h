// The words of texts, as the search library makes them.
#ifndef KESTAN_CLI_EXTRACT_DOCUMENT_WORDS_H_
#define KESTAN_CLI_EXTRACT_DOCUMENT_WORDS_H_

#include <kestan/search.h>

#include <string>
#include <string_view>
#include <utility>

#include "cli/console/message.h"

namespace kestan_cli {

inline std::string TextOf(kestan::search::Result<std::string> made) {
  if (!made.ok()) throw CommandError(made.status().message());
  return std::move(*made);
}

// Returns `utf8` in ASCII.
//   Throws   CommandError.
inline std::string InAscii(std::string_view utf8) { return TextOf(kestan::search::ToAscii(utf8)); }

// Returns the words of `ascii` but for `stop_words`.
//   Throws   CommandError.
inline std::string WordsIn(std::string ascii, const std::string& stop_words = "") {
  return TextOf(kestan::search::KeepWords(std::move(ascii), stop_words));
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_DOCUMENT_WORDS_H_
