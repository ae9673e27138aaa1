// SPDX-License-Identifier: GPL-3.0-or-later
// Extracts the text of HTML pages.
#ifndef KESTAN_CLI_EXTRACT_HTML_HTML_H_
#define KESTAN_CLI_EXTRACT_HTML_HTML_H_

#include <string>
#include <string_view>

namespace kestan_cli {

struct HtmlPage {
  std::string title;  // of the first title element, on one line; empty if there is none
  std::string text;   // of everything else but scripts and styles; blocks stand on their own lines
};

// Reads the page `bytes`, however broken its markup is. Its encoding is the one that it declares:
// with a byte order mark of UTF-8, in a meta element or in an XML declaration. If it declares none
// that can be true, it is UTF-8, and Latin-1 where bytes are not UTF-8. A page that declares
// Latin-1 but is valid UTF-8 is UTF-8. Invalid bytes separate words. The result is UTF-8.
//   Throws   SkipFile if not all of the text could be read, the page is too large, or the parser
//            cannot be loaded; bad_alloc if there is no memory. If libxml2 has none, the process
//            ends as Kestan::SafeMalloc says.
HtmlPage ReadHtml(std::string_view bytes);

// Reads a page in UTF-8, whatever encoding it declares. Throws as ReadHtml does.
HtmlPage ReadUtf8Html(std::string_view text);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_HTML_HTML_H_
