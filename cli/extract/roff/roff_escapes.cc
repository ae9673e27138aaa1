// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/roff/roff_escapes.h"

#include <kestan/search.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace kestan_cli {
namespace {

using kestan::search::AppendCharacter;

struct Glyph {
  std::string_view name;
  std::string_view text;
};

// Special characters by their names. An accent before a letter is below.
constexpr std::array kGlyphs{
    Glyph{"em", "\u2014"}, Glyph{"en", "\u2013"}, Glyph{"hy", "-"},      Glyph{"-", "-"},
    Glyph{"bu", "\u2022"}, Glyph{"aq", "'"},      Glyph{"cq", "'"},      Glyph{"oq", "'"},
    Glyph{"dq", "\""},     Glyph{"lq", "\""},     Glyph{"rq", "\""},     Glyph{"Bq", "\""},
    Glyph{"bq", "'"},      Glyph{"Fo", "\u00ab"}, Glyph{"Fc", "\u00bb"}, Glyph{"co", "\u00a9"},
    Glyph{"rg", "\u00ae"}, Glyph{"tm", "\u2122"}, Glyph{"de", "\u00b0"}, Glyph{"->", "\u2192"},
    Glyph{"<-", "\u2190"}, Glyph{"ha", "^"},      Glyph{"ga", "`"},      Glyph{"aa", "\u00b4"},
    Glyph{"ti", "~"},      Glyph{"rs", "\\"},     Glyph{"sl", "/"},      Glyph{"or", "|"},
    Glyph{"ba", "|"},      Glyph{"mu", "\u00d7"}, Glyph{"+-", "\u00b1"}, Glyph{"<=", "\u2264"},
    Glyph{">=", "\u2265"}, Glyph{"!=", "\u2260"}, Glyph{"ss", "\u00df"}, Glyph{"ae", "\u00e6"},
    Glyph{"AE", "\u00c6"}, Glyph{"oe", "\u0153"}, Glyph{"OE", "\u0152"}, Glyph{"o/", "\u00f8"},
    Glyph{"O/", "\u00d8"}, Glyph{"/l", "\u0142"}, Glyph{"/L", "\u0141"}, Glyph{"oa", "\u00e5"},
    Glyph{"oA", "\u00c5"}, Glyph{"mc", "\u00b5"}, Glyph{"*m", "\u03bc"}, Glyph{"sc", "\u00a7"},
    Glyph{"Eu", "\u20ac"}, Glyph{"Po", "\u00a3"}, Glyph{"ct", "\u00a2"}, Glyph{"Do", "$"},
    Glyph{"at", "@"},      Glyph{"sh", "#"},      Glyph{"lB", "["},      Glyph{"rB", "]"},
    Glyph{"lC", "{"},      Glyph{"rC", "}"},      Glyph{"la", "<"},      Glyph{"ra", ">"},
    Glyph{"12", "\u00bd"}, Glyph{"14", "\u00bc"}, Glyph{"ul", "_"},      Glyph{"pl", "+"},
    Glyph{"mi", "-"},      Glyph{"eq", "="},      Glyph{"**", "*"},      Glyph{"if", "\u221e"}};

// Accents: a combining character follows the letter.
constexpr std::array kAccents{Glyph{"'", "\u0301"}, Glyph{"`", "\u0300"}, Glyph{"^", "\u0302"},
                              Glyph{":", "\u0308"}, Glyph{"~", "\u0303"}, Glyph{",", "\u0327"}};

template <std::size_t kCount>
const Glyph* FindGlyph(const std::array<Glyph, kCount>& glyphs, std::string_view name) {
  const auto* const found = std::find_if(glyphs.begin(), glyphs.end(),
                                         [&](const Glyph& glyph) { return glyph.name == name; });
  return found != glyphs.end() ? &*found : nullptr;
}

void AppendNumber(std::string_view digits, int base, std::string* text) {
  unsigned number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  const bool is_character = result.ec == std::errc() && number >= ' ' && number <= 0x10ffff &&
                            (number < 0xd800 || number >= 0xe000);
  if (is_character) AppendCharacter(number, text);
}

// Appends the character `name`: "em", ":u", "u00FC", "u0075_0308".
void AppendGlyph(std::string_view name, std::string* text) {
  if (const Glyph* const glyph = FindGlyph(kGlyphs, name); glyph != nullptr) {
    *text += glyph->text;
  } else if (name.size() > 4 && name.front() == 'u') {
    while (!name.empty()) {
      name.remove_prefix(1);
      const std::string_view digits = name.substr(0, name.find('_'));
      AppendNumber(digits, 16, text);
      name.remove_prefix(digits.size());
    }
  } else if (name.size() == 2) {
    const Glyph* const accent = FindGlyph(kAccents, name.substr(0, 1));
    if (accent != nullptr) text->append(1, name[1]).append(accent->text);
  }
}

class EscapeReader {
 public:
  EscapeReader(std::string_view text, const RoffStrings& strings)
      : rest_(text), strings_(strings) {}

  std::string Read() {
    while (!rest_.empty()) {
      const std::size_t plain = std::min(rest_.find('\\'), rest_.size());
      text_ += rest_.substr(0, plain);
      rest_.remove_prefix(std::min(plain + 1, rest_.size()));
      if (!rest_.empty()) ReadEscape();
    }
    return std::move(text_);
  }

 private:
  char Take() {
    if (rest_.empty()) return '\0';
    const char first = rest_.front();
    rest_.remove_prefix(1);
    return first;
  }

  std::string_view TakeBytes(std::size_t count) {
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }

  // Takes what stands before `end`, and `end`.
  std::string_view TakeTo(char end) {
    const std::string_view bytes = TakeBytes(std::min(rest_.find(end), rest_.size()));
    Take();
    return bytes;
  }

  // Takes a name: "x", "(xx" or "[xxx]".
  std::string_view TakeName() {
    if (rest_.empty()) return {};
    const char first = rest_.front();
    if (first != '(' && first != '[') return TakeBytes(1);
    Take();
    return first == '(' ? TakeBytes(2) : TakeTo(']');
  }

  // Takes an argument between two equal characters: 'xxx'.
  std::string_view TakeQuoted() {
    const char quote = Take();
    return quote != '\0' ? TakeTo(quote) : std::string_view();
  }

  void TakeSize() {
    if (!rest_.empty() && (rest_.front() == '+' || rest_.front() == '-')) Take();
    if (rest_.empty()) return;
    if (rest_.front() == '\'') {
      TakeQuoted();
    } else {
      TakeName();
    }
  }

  void ReadEscape() {
    const char kind = Take();
    constexpr std::string_view kNothing = "|^&)/,%:cduprz{}a!";
    constexpr std::string_view kNamed = "fFmMgkVYOn";
    constexpr std::string_view kQuoted = "hvwxlLDboXABRSH";
    if (kind == '"' || kind == '#') {
      rest_ = {};
    } else if (kind == '*') {
      const auto found = strings_.find(TakeName());
      if (found != strings_.end()) text_ += found->second;
    } else if (kind == '(') {
      AppendGlyph(TakeBytes(2), &text_);
    } else if (kind == '[') {
      AppendGlyph(TakeTo(']'), &text_);
    } else if (kind == 'C') {
      AppendGlyph(TakeQuoted(), &text_);
    } else if (kind == 'N') {
      AppendNumber(TakeQuoted(), 10, &text_);
    } else if (kind == 's') {
      TakeSize();
    } else if (kNamed.find(kind) != std::string_view::npos) {
      if (kind == 'n' && !rest_.empty() && (rest_[0] == '+' || rest_[0] == '-')) Take();
      TakeName();
    } else if (kQuoted.find(kind) != std::string_view::npos) {
      TakeQuoted();
    } else if (kNothing.find(kind) == std::string_view::npos) {
      AppendPlain(kind);
    }
  }

  // Appends what stands for itself, or nearly.
  void AppendPlain(char kind) {
    constexpr std::string_view kBlanks = " ~0t";
    if (kBlanks.find(kind) != std::string_view::npos) {
      text_ += ' ';
    } else if (kind == 'e' || kind == 'E') {
      text_ += '\\';
    } else {
      text_ += kind;
    }
  }

  std::string_view rest_;
  const RoffStrings& strings_;
  std::string text_;
};

}  // namespace

std::string WithoutEscapes(std::string_view text, const RoffStrings& strings) {
  return EscapeReader(text, strings).Read();
}

}  // namespace kestan_cli
