// Places in HTML at which libxml2 drops text, or joins the words to either side.
#ifndef KESTAN_CLI_EXTRACT_HTML_HTML_REPAIR_H_
#define KESTAN_CLI_EXTRACT_HTML_HTML_REPAIR_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns the page `html` (UTF-8) without them: control characters are blanks, what stands for no
// character and references to none are U+FFFD, comments that are over at once are closed in full,
// and a tag that the end of the page cuts is text.
std::string RepairedHtml(std::string_view html);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_HTML_HTML_REPAIR_H_
