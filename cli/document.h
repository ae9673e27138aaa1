// From the text of a file to what the index keeps of it.
#ifndef KESTAN_CLI_DOCUMENT_H_
#define KESTAN_CLI_DOCUMENT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan_cli {

constexpr std::size_t kMaxTitleBytes = 200;
constexpr std::size_t kMaxSummaryBytes = 300;

struct Document {
  std::string title;    // the first line that is not blank, in at most kMaxTitleBytes
  std::string summary;  // the beginning of what follows it, in at most kMaxSummaryBytes
  std::string words;    // what the engine indexes
};

// Makes a document of `text`, which has no NUL and at most kMaxTextBytes bytes.
Document MakeDocument(std::string text);

// Returns the beginning of `text` as one line: trimmed, with one blank for every run of white
// space. It is at most `max_bytes` long and does not end within a UTF-8 character.
std::string Excerpt(std::string_view text, std::size_t max_bytes);

// Keeps the words of `text`: runs of ASCII letters, without apostrophes, cut after 64 letters, with
// white space between them. Documents and queries go through it alike.
std::string CleanWords(std::string text);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_DOCUMENT_H_
