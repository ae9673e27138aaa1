// SPDX-License-Identifier: GPL-3.0-or-later
// Text for manual pages: roff with the macros of man(7).
#ifndef KESTAN_CLI_APP_ROFF_H_
#define KESTAN_CLI_APP_ROFF_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns UTF-8 `text` in ASCII, with everything escaped that roff would take for markup or would
// show as another character: quotes and dashes can be copied from the page.
std::string Roff(std::string_view text);

// Returns an item of a list: `term` in bold, and below it `roff`.
std::string RoffItem(std::string_view term, const std::string& roff);

// Returns what a page has below its title, made of `markdown`. Of that it knows headings of the
// first two levels (what comes before the first of the second is the description), paragraphs,
// lists, blocks of code, and tables, whose rows become items; within a line `code`, **bold** and
// links, of which the text stays. The heading of the page and those of tables are left out.
std::string RoffOfMarkdown(const std::string& markdown);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_APP_ROFF_H_
