// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/manifest/manifest_text.h"

#include <cstddef>
#include <limits>

namespace kestan::search {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::size_t kHexBytes = 16;  // of a number
constexpr char kEscape = '\\';

bool IsPlain(char byte) { return byte > ' ' && byte <= '~' && byte != kEscape; }

// Returns the byte that "\xHH" at the start of `text` stands for, -1 for anything else.
int EscapedByte(std::string_view text) {
  if (text.size() < 4 || text[0] != kEscape || text[1] != 'x') return -1;
  const std::size_t high = kHexDigits.find(text[2]);
  const std::size_t low = kHexDigits.find(text[3]);
  if (high == std::string_view::npos || low == std::string_view::npos) return -1;
  return static_cast<int>(high * 16 + low);
}

}  // namespace

void AppendHex(std::uint64_t number, std::string* text) {
  for (int shift = 60; shift >= 0; shift -= 4) *text += kHexDigits[number >> shift & 0xf];
}

void AppendEscaped(std::string_view bytes, std::string* text) {
  for (const char byte : bytes) {
    if (IsPlain(byte)) {
      *text += byte;
    } else {
      const unsigned number = static_cast<unsigned char>(byte);
      *text += {kEscape, 'x', kHexDigits[number / 16], kHexDigits[number % 16]};
    }
  }
}

bool LineReader::Skip(std::string_view text) {
  if (rest_.substr(0, text.size()) != text) return false;
  rest_.remove_prefix(text.size());
  return true;
}

bool LineReader::ReadNumber(std::uint64_t* number) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  std::size_t digits = 0;
  std::uint64_t sum = 0;
  for (; digits < rest_.size() && rest_[digits] >= '0' && rest_[digits] <= '9'; ++digits) {
    const auto digit = static_cast<std::uint64_t>(rest_[digits] - '0');
    if (sum > (kMost - digit) / 10) return false;
    sum = sum * 10 + digit;
  }
  if (digits == 0) return false;
  rest_.remove_prefix(digits);
  *number = sum;
  return true;
}

bool LineReader::ReadHex(std::uint64_t* number) {
  if (rest_.size() < kHexBytes) return false;
  std::uint64_t sum = 0;
  for (const char byte : rest_.substr(0, kHexBytes)) {
    const std::size_t digit = kHexDigits.find(byte);
    if (digit == std::string_view::npos) return false;
    sum = sum << 4 | digit;
  }
  rest_.remove_prefix(kHexBytes);
  *number = sum;
  return true;
}

bool LineReader::ReadEscaped(std::string* bytes) {
  std::string read;
  std::string_view rest = rest_;
  while (!rest.empty() && rest[0] != ' ') {
    const bool is_plain = IsPlain(rest[0]);
    const int byte = is_plain ? rest[0] : EscapedByte(rest);
    if (byte < 0) return false;
    read += static_cast<char>(byte);
    rest.remove_prefix(is_plain ? 1 : 4);
  }
  rest_ = rest;
  *bytes = std::move(read);
  return true;
}

}  // namespace kestan::search
