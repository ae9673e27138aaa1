// From the text of a file to what the index keeps of it.
#ifndef KESTAN_CLI_EXTRACT_DOCUMENT_H_
#define KESTAN_CLI_EXTRACT_DOCUMENT_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/extract/title.h"

namespace kestan_cli {

// The longest text that the engine can clean.
constexpr std::size_t kMaxTextBytes = 0x7fffffff - 1;

constexpr std::size_t kMaxTitleBytes = 200;
constexpr std::size_t kMaxSummaryBytes = 300;

struct Document {
  std::string title;    // in at most kMaxTitleBytes
  std::string summary;  // the beginning of what follows the title, in at most kMaxSummaryBytes
  std::string words;    // what the engine indexes
  std::string note{};   // why not all of the text is in them; empty if it is
};

// What to leave out of the words.
struct WordRules {
  std::string stop_words;      // separated by anything but letters; none leave all words in
  bool strip_encoded = false;  // blocks of uuencode and base64
};

// Makes a document of `text` (UTF-8, no NUL). Its words are in ASCII letters, whatever the script.
// With stop words, words of one or two letters are left out too.
//   Throws   SkipFile if the words take more than kMaxTextBytes.
Document MakeDocument(std::string text, TitleRule rule = TitleRule::kFirstLine,
                      const WordRules& rules = {});

// Returns the beginning of `text` as one line: trimmed, with one blank for every run of white
// space. It is at most `max_bytes` long and does not end within a UTF-8 character.
std::string Excerpt(std::string_view text, std::size_t max_bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_DOCUMENT_H_
