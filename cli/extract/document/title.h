// SPDX-License-Identifier: GPL-3.0-or-later
// Where a text has its title.
#ifndef KESTAN_CLI_EXTRACT_DOCUMENT_TITLE_H_
#define KESTAN_CLI_EXTRACT_DOCUMENT_TITLE_H_

#include <string_view>

namespace kestan_cli {

// Two parts of a text, whose bytes they borrow.
struct TitledText {
  std::string_view title;
  std::string_view rest;  // all that follows the title
};

// Which part of a text is its title.
enum class TitleRule {
  // The first line that is not blank.
  kFirstLine,
  // The "title:" between the two lines "---" that a text may begin with; else the first heading
  // ("# Title", or a line with === or --- below it) outside blocks of code; else the first line.
  kMarkdown,
};

// Splits `text` after its title.
TitledText SplitAtTitle(std::string_view text, TitleRule rule = TitleRule::kFirstLine);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_DOCUMENT_TITLE_H_
