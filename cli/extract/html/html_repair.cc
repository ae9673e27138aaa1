// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/html/html_repair.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace kestan_cli {
namespace {

constexpr std::string_view kUnknown = "\ufffd";

struct Trap {
  std::string_view found;
  std::string_view instead;
};

// To browsers these are whole comments; libxml2 looks for another end.
constexpr std::array kTraps{Trap{"<!-->", "<!-- -->"}, Trap{"<!--->", "<!-- -->"},
                            Trap{"\xef\xbf\xbe", kUnknown}, Trap{"\xef\xbf\xbf", kUnknown}};

bool IsControl(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

bool IsCharacter(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code < 0xd800 || (code >= 0xe000 && code < 0xfffe) || (code >= 0x10000 && code < 0x110000);
}

// Returns the value of a digit; 16 if `digit` is not one.
std::uint32_t ValueOf(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<std::uint32_t>(digit - '0');
  const char small = static_cast<char>(digit | 0x20);
  return small >= 'a' && small <= 'f' ? static_cast<std::uint32_t>(small - 'a') + 10 : 16;
}

// A reference such as "&#65;" at the start of a text.
struct Reference {
  std::size_t bytes = 0;  // with its semicolon; 0 if it has no digits
  std::uint32_t code = 0;
};

Reference ReadReference(std::string_view text) {
  const bool is_hexadecimal = text.substr(2, 1) == "x" || text.substr(2, 1) == "X";
  const std::uint32_t base = is_hexadecimal ? 16 : 10;
  const std::size_t start = is_hexadecimal ? 3 : 2;
  Reference reference{start, 0};
  for (; reference.bytes < text.size(); ++reference.bytes) {
    const std::uint32_t value = ValueOf(text[reference.bytes]);
    if (value >= base) break;
    reference.code = std::min<std::uint32_t>(reference.code * base + value, 0x110000);
  }
  if (reference.bytes == start) return {};
  if (text.substr(reference.bytes, 1) == ";") ++reference.bytes;
  return reference;
}

struct Replacement {
  std::size_t bytes = 0;  // that are replaced; 0 if none are
  std::string_view instead;
};

// Returns what to replace at the start of `text`. No tag ends after it if `is_after_tags`.
Replacement FindReplacement(std::string_view text, bool is_after_tags) {
  if (IsControl(text.front())) return {1, " "};
  if (text.front() == '<' && is_after_tags) return {1, "&lt;"};
  if (text.substr(0, 2) == "&#") {
    const Reference reference = ReadReference(text);
    if (reference.bytes == 0) return {1, "&amp;"};
    return IsCharacter(reference.code) ? Replacement() : Replacement{reference.bytes, kUnknown};
  }
  for (const Trap& trap : kTraps) {
    if (text.substr(0, trap.found.size()) == trap.found) return {trap.found.size(), trap.instead};
  }
  return {};
}

bool MayBeTrap(char byte) {
  return byte == '&' || byte == '<' || byte == '\xef' || IsControl(byte);
}

}  // namespace

std::string RepairedHtml(std::string_view html) {
  std::string repaired;
  repaired.reserve(html.size());
  const std::size_t last = html.rfind('>');
  const std::size_t tags_end = last != std::string_view::npos ? last : 0;
  std::size_t kept = 0;  // the bytes before it are in `repaired`
  for (std::size_t at = 0; at < html.size();) {
    const Replacement replacement =
        MayBeTrap(html[at]) ? FindReplacement(html.substr(at), at >= tags_end) : Replacement();
    if (replacement.bytes == 0) {
      ++at;
      continue;
    }
    repaired += html.substr(kept, at - kept);
    repaired += replacement.instead;
    at += replacement.bytes;
    kept = at;
  }
  repaired += html.substr(kept);
  return repaired;
}

}  // namespace kestan_cli
