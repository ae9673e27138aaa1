// SPDX-License-Identifier: GPL-3.0-or-later
// Makes the text of a file into what the index keeps of it.
#ifndef KESTAN_CLI_EXTRACT_DOCUMENT_DOCUMENT_H_
#define KESTAN_CLI_EXTRACT_DOCUMENT_DOCUMENT_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/extract/document/title.h"
#include "cli/files/mail_facts.h"

namespace kestan_cli {

// The longest text that an index takes, with room for what else a document has.
constexpr std::size_t kMaxTextBytes = (std::size_t{1} << 30) - (std::size_t{1} << 16);

constexpr std::size_t kMaxTitleBytes = 200;
constexpr std::size_t kMaxSummaryBytes = 300;

struct Document {
  std::string title;    // at most kMaxTitleBytes
  std::string summary;  // the text after the title, at most kMaxSummaryBytes
  std::string text;     // what is indexed, in UTF-8: the index finds the words in it
  std::string words;    // what is indexed, as it is stored, where stop words are left out; then
                        // `text` is empty
  std::string note{};   // why some of the text is missing; empty if none is
  MailFacts mail{};     // of a message
};

// What to leave out of the words.
struct WordRules {
  std::string stop_words;      // as they are stored, each followed by a blank; may be empty
  bool strip_encoded = false;  // blocks of uuencode and base64
};

// Makes a document of `text` (UTF-8, no NUL). A title from further down opens what is indexed too:
// words that open a document count more in answers. With stop words, words of one or two letters
// are left out too.
//   Throws   SkipFile if the text or the words take more than kMaxTextBytes.
Document MakeDocument(std::string text, TitleRule rule = TitleRule::kFirstLine,
                      const WordRules& rules = {});

// Returns the start of `text` as one trimmed line, with one blank for every run of white space: at
// most `max_bytes`, and no part of a UTF-8 character at the end.
std::string Excerpt(std::string_view text, std::size_t max_bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_DOCUMENT_DOCUMENT_H_
