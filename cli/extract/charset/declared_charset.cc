// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/declared_charset.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "cli/extract/charset/ascii.h"

namespace kestan_cli {
namespace {

// Each label may cost a scan of the whole page, and a hostile page may have many.
constexpr std::size_t kMaxCharsets = 8;

struct Tag {
  std::string name;
  std::map<std::string, std::string> attributes;  // the first of each name

  std::string Attribute(const std::string& attribute) const {
    const auto found = attributes.find(attribute);
    return found != attributes.end() ? found->second : "";
  }
};

// Reads the tags of a page one after the other, as a browser finds them.
class TagReader {
 public:
  explicit TagReader(std::string_view html) : rest_(html) {}

  // Reads the next start tag.
  //   Returns  false at the end of the page.
  bool Next(Tag* tag) {
    while (SkipTo("<")) {
      if (StartsWith("<!--")) {
        rest_.remove_prefix(2);  // "<!-->" is a whole comment
        SkipTo("-->");
      } else if (rest_.size() > 1 && IsAsciiLetter(rest_[1])) {
        rest_.remove_prefix(1);
        *tag = ReadTag();
        if (tag->name == "script" || tag->name == "style") SkipToEndOf(tag->name);
        return true;
      } else if (rest_.size() > 1 && (rest_[1] == '!' || rest_[1] == '?')) {
        SkipTo(">");
      } else {
        rest_.remove_prefix(1);
      }
    }
    return false;
  }

 private:
  bool StartsWith(std::string_view start) const { return rest_.substr(0, start.size()) == start; }

  // Skips to the next `mark`.
  //   Returns  false if there is none: then nothing is left.
  bool SkipTo(std::string_view mark) {
    rest_.remove_prefix(std::min(rest_.find(mark), rest_.size()));
    return !rest_.empty();
  }

  void SkipToEndOf(const std::string& name) {
    while (SkipTo("</")) {
      if (LowerCase(rest_.substr(2, name.size())) == name) return;
      rest_.remove_prefix(2);
    }
  }

  void Skip(std::string_view bytes) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(bytes), rest_.size()));
  }

  // Reads up to the first of `ends`.
  std::string_view Take(std::string_view ends) {
    const std::string_view taken = rest_.substr(0, rest_.find_first_of(ends));
    rest_.remove_prefix(taken.size());
    return taken;
  }

  Tag ReadTag() {
    Tag tag{LowerCase(Take(" \t\n\f\r/>")), {}};
    while (true) {
      Skip(" \t\n\f\r/");
      if (rest_.empty() || rest_.front() == '>') return tag;
      const std::string_view first = rest_.substr(0, 1);  // may be '='
      rest_.remove_prefix(1);
      const std::string name = LowerCase(std::string(first) + std::string(Take(" \t\n\f\r/>=")));
      Skip(kHtmlWhiteSpace);
      tag.attributes.emplace(name, StartsWith("=") ? ReadValue() : "");
    }
  }

  std::string ReadValue() {
    rest_.remove_prefix(1);
    Skip(kHtmlWhiteSpace);
    if (!StartsWith("\"") && !StartsWith("'")) return std::string(Take(" \t\n\f\r>"));
    const std::string_view quote = rest_.substr(0, 1);
    rest_.remove_prefix(1);
    std::string value(Take(quote));
    rest_.remove_prefix(std::min<std::size_t>(1, rest_.size()));
    return value;
  }

  std::string_view rest_;
};

// Returns the value of `name` in text like "text/html; charset=x"; nothing if there is none.
std::string ValueIn(std::string_view text, std::string_view name) {
  const std::string lower = LowerCase(text);
  for (std::size_t at = lower.find(name); at != std::string::npos; at = lower.find(name, at)) {
    at = std::min(lower.find_first_not_of(kHtmlWhiteSpace, at + name.size()), lower.size());
    if (at == lower.size() || lower[at] != '=') continue;
    at = std::min(lower.find_first_not_of(kHtmlWhiteSpace, at + 1), lower.size());
    const bool is_quoted = at < lower.size() && (lower[at] == '"' || lower[at] == '\'');
    const std::string ends = is_quoted ? std::string(1, lower[at]) : " \t\n\f\r;";
    at += is_quoted ? 1 : 0;
    return lower.substr(at, lower.find_first_of(ends, at) - at);
  }
  return "";
}

std::string CharsetOf(const Tag& meta) {
  if (std::string charset = meta.Attribute("charset"); !charset.empty()) return charset;
  if (LowerCase(meta.Attribute("http-equiv")) != "content-type") return "";
  return ValueIn(meta.Attribute("content"), "charset");
}

std::string CharsetOfXml(std::string_view html) {
  if (html.substr(0, 5) != "<?xml") return "";
  return ValueIn(html.substr(0, html.find('>')), "encoding");
}

}  // namespace

std::vector<std::string> DeclaredCharsets(std::string_view html) {
  std::vector<std::string> charsets;
  TagReader reader(html);
  const auto add = [&](const std::string& charset) {
    if (!charset.empty()) charsets.push_back(charset);
  };
  for (Tag tag; charsets.size() < kMaxCharsets && reader.Next(&tag);) {
    if (tag.name == "meta") add(CharsetOf(tag));
  }
  add(CharsetOfXml(html));
  return charsets;
}

}  // namespace kestan_cli
