// The text of HTML pages.
#ifndef KESTAN_CLI_EXTRACT_HTML_HTML_H_
#define KESTAN_CLI_EXTRACT_HTML_HTML_H_

#include <string>
#include <string_view>

namespace kestan_cli {

struct HtmlPage {
  std::string title;  // of the first title element, on one line; empty if there is none
  std::string text;   // of everything else but scripts and styles; blocks stand on their own lines
};

// Reads `bytes`, however broken their markup. Their encoding is the one that the page names, with a
// mark of UTF-8, in a meta element or in an XML declaration; without one that can be true it is
// UTF-8, and Latin-1 where bytes are not. A page that names Latin-1 and reads as UTF-8 throughout
// is UTF-8. Bytes that the encoding does not know part words and lose no others. What comes back is
// UTF-8.
//   Throws   SkipFile if not all of the text could be read, or the page is too large; bad_alloc if
//            ICU has no memory. Where libxml2 has none, the process ends as Kestan::SafeMalloc
//            says.
HtmlPage ReadHtml(std::string_view bytes);

// Reads a page in UTF-8, whatever encoding it names. Throws as ReadHtml does.
HtmlPage ReadUtf8Html(std::string_view text);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_HTML_HTML_H_
