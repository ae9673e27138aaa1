// The text of HTML pages.
#ifndef KESTAN_CLI_HTML_H_
#define KESTAN_CLI_HTML_H_

#include <string>
#include <string_view>

namespace kestan_cli {

struct HtmlPage {
  std::string title;  // of the first title element, on one line; empty if there is none
  std::string text;   // of everything else but scripts and styles; blocks stand on their own lines
};

// Reads `bytes` (2,147,483,647 at most), however broken. They are UTF-8 where all of them read as
// that; else in the encoding that the page names; else Latin-1. What comes back is UTF-8.
HtmlPage ReadHtml(std::string_view bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_HTML_H_
