// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/query_pieces.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "cli/console/ascii.h"
#include "cli/console/message.h"

namespace kestan_cli {
namespace {

using Kind = QueryPiece::Kind;

constexpr std::string_view kWordEnds = " \t\n\v\f\r()";

struct KeyName {
  std::string_view name;
  FilterKey key;
  std::string_view example;
};

constexpr std::array<KeyName, 6> kKeys = {{{"path:", FilterKey::kPath, "path:docs"},
                                           {"type:", FilterKey::kType, "type:pdf"},
                                           {"after:", FilterKey::kAfter, "after:2024-03-01"},
                                           {"before:", FilterKey::kBefore, "before:2024"},
                                           {"title:", FilterKey::kTitle, "title:linux"},
                                           {"from:", FilterKey::kFrom, "from:ann@example.org"}}};

// The quotes of word processors are U+201C to U+201F. In UTF-8 they differ in the last byte only.
std::string WithPlainQuotes(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char last = i + 2 < text.size() ? text[i + 2] : '\0';
    const bool is_quote = text.substr(i, 2) == "\xe2\x80" && last >= '\x9c' && last <= '\x9f';
    plain += is_quote ? '"' : text[i];
    if (is_quote) i += 2;
  }
  return plain;
}

Kind KindOf(std::string_view text) {
  if (text == "(") return Kind::kOpen;
  if (text == ")") return Kind::kClose;
  if (text == "AND") return Kind::kAnd;
  if (text == "OR") return Kind::kOr;
  if (text == "NOT") return Kind::kNot;
  const bool is_near = text.substr(0, 5) == "NEAR/" && text.size() > 5 &&
                       text.find_first_not_of("0123456789", 5) == std::string_view::npos;
  return is_near ? Kind::kNear : Kind::kText;
}

class Cutter {
 public:
  explicit Cutter(std::string_view text) : rest_(text) {}

  std::vector<QueryPiece> Cut() {
    while (true) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(kWhiteSpace), rest_.size()));
      if (rest_.empty()) return std::move(pieces_);
      const std::size_t minus = MinusBytes();
      if (CutFilter(minus)) continue;
      if (minus > 0 && rest_[1] == '(') {
        Add(Kind::kNot, 1);
      } else {
        CutText(minus);
      }
    }
  }

 private:
  // A "-" that something else follows is part of a word.
  std::size_t MinusBytes() const {
    if (rest_.size() < 2 || rest_[0] != '-') return 0;
    return rest_[1] == '-' || rest_[1] == ')' || IsWhiteSpace(rest_[1]) ? 0 : 1;
  }

  bool CutFilter(std::size_t minus) {
    const std::string_view text = rest_.substr(minus);
    const auto* const key = std::find_if(kKeys.begin(), kKeys.end(), [text](const KeyName& known) {
      return text.substr(0, known.name.size()) == known.name;
    });
    if (key == kKeys.end()) return false;
    const std::string_view after = text.substr(key->name.size());
    const std::size_t bytes = QuotedBytes(after);
    const std::size_t end = bytes > 0 ? bytes : WordBytes(after);
    QueryFilter filter{key->key, Unquoted(after.substr(0, end)), minus > 0,
                       std::string(text.substr(0, key->name.size() + end))};
    if (filter.value.find_first_not_of(kWhiteSpace) == std::string::npos) {
      throw CommandError(std::string(key->name) + " needs a value right after it, as in " +
                         std::string(key->example) + "; in double quotes it is text");
    }
    pieces_.push_back({Kind::kFilter, filter.text, filter});
    rest_.remove_prefix(minus + filter.text.size());
    return true;
  }

  // Returns how many bytes the quotes at the start of `text` and what they hold have; 0 if there
  // are none, or they are not closed.
  static std::size_t QuotedBytes(std::string_view text) {
    if (text.empty() || text[0] != '"') return 0;
    const std::size_t end = text.find('"', 1);
    return end == std::string_view::npos ? 0 : end + 1;
  }

  static std::size_t WordBytes(std::string_view text) {
    return std::min(text.find_first_of(kWordEnds), text.size());
  }

  static std::string Unquoted(std::string_view text) {
    std::string value(text);
    value.erase(std::remove(value.begin(), value.end(), '"'), value.end());
    return value;
  }

  void CutText(std::size_t minus) {
    const std::size_t quoted = QuotedBytes(rest_.substr(minus));
    if (quoted > 0) return Add(Kind::kText, minus + quoted);
    const std::size_t bytes = minus + std::max<std::size_t>(WordBytes(rest_.substr(minus)), 1);
    Add(KindOf(rest_.substr(0, bytes)), bytes);
  }

  void Add(Kind kind, std::size_t bytes) {
    pieces_.push_back({kind, std::string(rest_.substr(0, bytes))});
    rest_.remove_prefix(bytes);
  }

  std::string_view rest_;
  std::vector<QueryPiece> pieces_;
};

}  // namespace

std::vector<QueryPiece> PiecesOf(std::string_view query) {
  const std::string plain = WithPlainQuotes(query);
  return Cutter(plain).Cut();
}

}  // namespace kestan_cli
