// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/html/html.h"

#include <kestan/search.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "cli/extract/charset/charset.h"
#include "cli/extract/charset/declared_charset.h"
#include "cli/extract/charset/latin1.h"
#include "cli/extract/charset/unmarked.h"
#include "cli/extract/document/document.h"
#include "cli/extract/html/html_repair.h"
#include "cli/extract/module/loaded_readers.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

using kestan::search::IsUtf8;

// Elements inside a line: a word may continue across them. Sorted.
constexpr std::array<std::string_view, 32> kInline{
    "a",    "abbr",   "acronym", "b",   "bdi", "bdo",  "big",  "cite", "code", "del",  "dfn",
    "em",   "font",   "i",       "ins", "kbd", "mark", "nobr", "q",    "s",    "samp", "small",
    "span", "strike", "strong",  "sub", "sup", "time", "tt",   "u",    "var",  "wbr"};

// Elements whose text no reader sees.
constexpr std::array<std::string_view, 3> kHidden{"script", "style", "template"};

template <std::size_t kCount>
bool IsAmong(const std::array<std::string_view, kCount>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Builds a page from the events of the parser.
class PageBuilder {
 public:
  void Start(std::string_view name) {
    if (IsAmong(kHidden, name)) ++hidden_depth_;
    if (name == "title" && !has_title_) in_title_ = true;
    BreakLine(name);
  }

  void End(std::string_view name) {
    if (IsAmong(kHidden, name) && hidden_depth_ > 0) --hidden_depth_;
    if (name == "title" && in_title_) {
      in_title_ = false;
      has_title_ = true;
    }
    BreakLine(name);
  }

  void Text(std::string_view text) {
    if (hidden_depth_ > 0) return;
    (in_title_ ? page_.title : page_.text) += text;
  }

  HtmlPage Finish() {
    page_.title = Excerpt(page_.title, page_.title.size());
    return std::move(page_);
  }

 private:
  void BreakLine(std::string_view name) {
    std::string& text = in_title_ ? page_.title : page_.text;
    if (!text.empty() && text.back() != '\n' && !IsAmong(kInline, name)) text += '\n';
  }

  HtmlPage page_;
  unsigned hidden_depth_ = 0;
  bool in_title_ = false;
  bool has_title_ = false;
};

// What the parser calls. No exception may pass through it.
struct Building {
  template <typename Event>
  static void Take(void* context, const Event& event) noexcept {
    auto* const building = static_cast<Building*>(context);
    if (building->lacks_memory) return;
    try {
      event(building->builder);
    } catch (const std::exception&) {
      building->lacks_memory = true;
    }
  }

  HtmlEvents Events() {
    return {this,
            [](void* context, const char* element) noexcept {
              Take(context, [&](PageBuilder& page) { page.Start(element); });
            },
            [](void* context, const char* element) noexcept {
              Take(context, [&](PageBuilder& page) { page.End(element); });
            },
            [](void* context, const char* bytes, std::size_t size) noexcept {
              Take(context, [&](PageBuilder& page) { page.Text({bytes, size}); });
            }};
  }

  PageBuilder builder;
  bool lacks_memory = false;
};

// Pages in UTF-8 that declare Latin-1 are more frequent than pages in Latin-1 that are valid UTF-8.
bool IsUtf8AllTheSame(std::string_view charset, std::string_view bytes) {
  return IsLatin1Label(charset) && IsUtf8(bytes);
}

std::string Decoded(std::string_view bytes) {
  constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
  if (bytes.substr(0, kUtf8Mark.size()) == kUtf8Mark) {
    return Utf8OrLatin1(std::string(bytes.substr(kUtf8Mark.size())));
  }
  for (const std::string& charset : DeclaredCharsets(bytes)) {
    if (IsUtf8AllTheSame(charset, bytes)) break;
    std::optional<std::string> text = FromCharset(charset, bytes);
    if (text.has_value()) return std::move(*text);
  }
  if (!DeclaredCharsets(bytes).empty()) return Utf8OrLatin1(std::string(bytes));
  std::string ignored;  // a page without a declaration is most often Latin-1
  return FromUnmarked(std::string(bytes), &ignored);
}

// Parses `html`, which is UTF-8 whatever it declares.
HtmlPage Parsed(const std::string& html) {
  Building building;
  const ReadStatus status = LoadedReaders().parse_html(html.data(), html.size(), building.Events());
  if (building.lacks_memory || status == ReadStatus::kNoMemory) throw std::bad_alloc();
  if (status == ReadStatus::kRead) return building.builder.Finish();
  throw SkipFile(SkipKind::kUnreadable, "the page could not be read whole");
}

}  // namespace

HtmlPage ReadHtml(std::string_view bytes) { return ReadUtf8Html(Decoded(bytes)); }

HtmlPage ReadUtf8Html(std::string_view text) {
  const std::string html = RepairedHtml(text);
  if (html.size() > kMaxTextBytes) throw SkipFile(SkipKind::kTooLarge, "too much text");
  return html.empty() ? HtmlPage() : Parsed(html);
}

}  // namespace kestan_cli
