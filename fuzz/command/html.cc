// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a page. Its text is UTF-8, and hardly longer than the page.
#include "cli/extract/html/html.h"

#include <kestan/search/text.h>

#include <string>
#include <string_view>

#include "cli/files/skip.h"
#include "fuzz/support/reporting.h"

namespace {

using kestan_cli::HtmlPage;
using kestan_fuzz::Require;

// One byte may become U+FFFD, or a character of three bytes, and blocks add a line feed on each
// side.
constexpr std::size_t kMaxGrowth = 8;

void Check(const HtmlPage& page, std::size_t bytes) {
  Require(kestan::search::IsUtf8(page.title) && kestan::search::IsUtf8(page.text),
          "text that is not UTF-8");
  Require(page.title.size() + page.text.size() <= kMaxGrowth * (bytes + 1), "a text that grows");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    Check(kestan_cli::ReadHtml(bytes), size);
  } catch (const kestan_cli::SkipFile& skip) {
    Require(*skip.what() != '\0', "no reason");
  }
  return 0;
}
