// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/latin1.h"

#include <kestan/search.h>

#include <array>
#include <cstddef>

namespace kestan_cli {
namespace {

using kestan::search::AppendCharacter;
using kestan::search::FindNonUtf8;
using kestan::search::IsUtf8;

// From 0x80 to 0x9f, where Latin-1 has control characters, windows-1252 has these, and so do files
// that are said to be Latin-1. 0: no character.
constexpr std::array<char16_t, 32> kWindowsSigns{
    0x20ac, 0,      0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021,   // 80-87
    0x02c6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017d, 0,        // 88-8f
    0,      0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,   // 90-97
    0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0,      0x017e, 0x0178};  // 98-9f

char32_t FromLatin1(unsigned char byte) {
  if (byte < 0x80 || byte >= 0xa0) return byte;
  const char32_t sign = kWindowsSigns.at(byte - 0x80U);
  return sign != 0 ? sign : byte;
}

std::string WithLatin1Repaired(std::string_view text, std::size_t first_other) {
  std::string repaired;
  repaired.reserve(text.size() + text.size() / 8);
  std::size_t at = 0;
  for (std::size_t other = first_other; other < text.size(); other = FindNonUtf8(text, at)) {
    repaired += text.substr(at, other - at);
    AppendCharacter(FromLatin1(static_cast<unsigned char>(text[other])), &repaired);
    at = other + 1;
  }
  repaired += text.substr(at);
  return repaired;
}

}  // namespace

std::string Utf8OrLatin1(std::string bytes) {
  const std::size_t other = FindNonUtf8(bytes, 0);
  if (other == bytes.size()) return bytes;
  return WithLatin1Repaired(bytes, other);
}

std::string Utf8OrAllLatin1(std::string_view text, bool* was_latin1) {
  if (IsUtf8(text)) return std::string(text);
  *was_latin1 = true;
  std::string converted;
  for (const char byte : text) AppendCharacter(static_cast<unsigned char>(byte), &converted);
  return converted;
}

}  // namespace kestan_cli
