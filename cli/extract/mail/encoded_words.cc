// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/encoded_words.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "cli/extract/charset/ascii.h"
#include "cli/extract/charset/charset.h"
#include "cli/extract/charset/decode.h"
#include "cli/extract/charset/latin1.h"
#include "cli/extract/charset/unmarked.h"

namespace kestan_cli {
namespace {

int ValueOfHex(char byte) {
  if (byte >= '0' && byte <= '9') return byte - '0';
  byte = LowerCase(byte);
  return byte >= 'a' && byte <= 'f' ? byte - 'a' + 10 : -1;
}

int ValueOfBase64(char byte) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t at = kDigits.find(byte);
  return at != std::string_view::npos ? static_cast<int>(at) : -1;
}

std::string FromBase64(std::string_view text) {
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char byte : text) {
    const int value = ValueOfBase64(byte);
    if (value < 0) continue;
    bits = (bits << 6 | static_cast<unsigned>(value)) & 0xffffff;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xff);
  }
  return bytes;
}

std::string FromQ(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_code = text[i] == '=' && i + 2 < text.size() && ValueOfHex(text[i + 1]) >= 0 &&
                         ValueOfHex(text[i + 2]) >= 0;
    if (is_code) {
      bytes += static_cast<char>(ValueOfHex(text[i + 1]) * 16 + ValueOfHex(text[i + 2]));
      i += 2;
    } else {
      bytes += text[i] == '_' ? ' ' : text[i];
    }
  }
  return bytes;
}

struct EncodedWord {
  std::string charset;
  std::string bytes;
  std::size_t size = 0;  // of the word in the header
};

// Reads the word at the start of `text`: "=?CHARSET?B?TEXT?=".
std::optional<EncodedWord> ReadWord(std::string_view text) {
  if (text.substr(0, 2) != "=?") return std::nullopt;
  const std::size_t kind = text.find('?', 2);
  if (kind == std::string_view::npos || kind + 2 >= text.size() || text[kind + 2] != '?') {
    return std::nullopt;
  }
  const std::size_t end = text.find("?=", kind + 3);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view charset = text.substr(2, kind - 2);
  const std::string_view encoded = text.substr(kind + 3, end - kind - 3);
  if (charset.empty() || charset.find_first_of(kWhiteSpace) != std::string_view::npos) {
    return std::nullopt;
  }
  EncodedWord word{LowerCase(charset.substr(0, charset.find('*'))), "", end + 2};
  const char encoding = LowerCase(text[kind + 1]);
  if (encoding != 'b' && encoding != 'q') return std::nullopt;
  word.bytes = encoding == 'b' ? FromBase64(encoded) : FromQ(encoded);
  return word;
}

// Reads the word at the start of `text`, and those that follow it in the same character set: some
// programs split a character between two words. Blanks between words are none.
std::optional<EncodedWord> ReadWords(std::string_view text) {
  std::optional<EncodedWord> all = ReadWord(text);
  while (all.has_value()) {
    const std::size_t next = text.find_first_not_of(kWhiteSpace, all->size);
    if (next == std::string_view::npos) break;
    const std::optional<EncodedWord> more = ReadWord(text.substr(next));
    if (!more.has_value()) break;
    all->size = next;
    if (more->charset != all->charset) break;
    all->bytes += more->bytes;
    all->size = next + more->size;
  }
  return all;
}

}  // namespace

std::string FromMailCharset(std::string_view charset, std::string bytes) {
  if (StartsAsUtf16(bytes)) return DecodedText(std::move(bytes)).value_or("");
  if (!charset.empty()) {
    if (IsLatin1Label(charset)) return Utf8OrLatin1(std::move(bytes));
    if (std::optional<std::string> text = FromCharset(charset, bytes)) return std::move(*text);
  }
  std::string ignored;
  return FromUnmarked(std::move(bytes), &ignored);
}

std::string DecodedHeader(std::string_view raw) {
  std::string text;
  while (!raw.empty()) {
    const std::size_t start = std::min(raw.find("=?"), raw.size());
    text += Utf8OrLatin1(std::string(raw.substr(0, start)));
    raw.remove_prefix(start);
    if (raw.empty()) break;
    std::optional<EncodedWord> word = ReadWords(raw);
    if (word.has_value()) {
      text += FromMailCharset(word->charset, std::move(word->bytes));
    } else {
      text += raw.substr(0, 2);
    }
    raw.remove_prefix(word.has_value() ? word->size : 2);
  }
  return text;
}

}  // namespace kestan_cli
