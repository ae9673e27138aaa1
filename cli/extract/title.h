// Where a text has its title.
#ifndef KESTAN_CLI_EXTRACT_TITLE_H_
#define KESTAN_CLI_EXTRACT_TITLE_H_

#include <string_view>

namespace kestan_cli {

// Two parts of a text, whose bytes they borrow.
struct TitledText {
  std::string_view title;
  std::string_view rest;  // all that follows the title
};

// Parts `text` into its first line that is not blank and what follows it.
TitledText SplitAtTitle(std::string_view text);

// Parts Markdown at its first heading ("# Title", or a line with === or --- below it), outside
// blocks of code; a "title:" between the two lines "---" that a text may begin with goes before.
// Without either, as SplitAtTitle does.
TitledText SplitMarkdown(std::string_view text);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_TITLE_H_
