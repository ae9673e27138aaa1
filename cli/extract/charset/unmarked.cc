// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/unmarked.h"

#include <kestan/search.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <utility>

#include "cli/extract/charset/charset.h"
#include "cli/extract/charset/latin1.h"
#include "cli/extract/module/loaded_readers.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

using kestan::search::FindNonUtf8;
using kestan::search::IsUtf8;

// Fewer bytes than these say nothing about a language.
constexpr std::size_t kFewBytes = 8;

constexpr std::size_t kExaminedBytes = std::size_t{1} << 16;

// Of 100: what ICU says of texts of a few lines in the right character set.
constexpr int kLeastConfidence = 25;

constexpr const char* kReadAsLatin1 = "its encoding is unknown, and it was read as Latin-1";

bool IsTextUnit(unsigned unit) {
  if (unit < 0x20) return unit == '\t' || unit == '\n' || unit == '\r' || unit == '\f';
  return unit < 0xfdd0 || (unit > 0xfdef && unit < 0xfffe);
}

// Returns whether `bytes` are text in UTF-16, with the low byte of each unit at `low` (0 or 1).
bool IsUtf16(std::string_view bytes, std::size_t low) {
  bool needs_trail = false;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const unsigned low_byte = static_cast<unsigned char>(bytes[at + low]);
    const unsigned unit =
        static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1 - low])) << 8 | low_byte;
    const bool is_trail = (unit & 0xfc00) == 0xdc00;
    if (is_trail != needs_trail || !IsTextUnit(unit)) return false;
    needs_trail = (unit & 0xfc00) == 0xd800;
  }
  return true;
}

// Returns whether more than half of the units in `bytes` are two letters or signs of ASCII. The low
// byte of each is at `low`; the high one of Hiragana and Katakana is a zero in ASCII.
bool IsMostlyAscii(std::string_view bytes, std::size_t low) {
  const auto is_ascii = [](char byte) { return byte >= ' ' && byte <= '~'; };
  std::size_t count = 0;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const char high_byte = bytes[at + 1 - low];
    if (high_byte != '0' && is_ascii(high_byte) && is_ascii(bytes[at + low])) ++count;
  }
  return count > bytes.size() / 4;
}

// Returns whether so many bytes are not UTF-8 that the text is in another character set.
bool IsOtherThanUtf8(std::string_view bytes) {
  std::size_t others = 0;
  std::size_t high = 0;
  for (const char byte : bytes) high += static_cast<unsigned char>(byte) >= 0x80 ? 1 : 0;
  for (std::size_t at = FindNonUtf8(bytes, 0); at < bytes.size(); at = FindNonUtf8(bytes, at + 1)) {
    ++others;
  }
  return others >= kFewBytes && others > high / 2;
}

// Returns whether `bytes` switch to characters of two bytes, as ISO-2022 does in East Asia.
bool HasShifts(std::string_view bytes) { return bytes.find("\x1b$") != std::string_view::npos; }

// Returns whether `byte` is no letter, and no sign that stands beside letters, in Latin-1 as
// Windows has it. In the character sets of DOS and of old Macs such bytes are letters.
bool IsUnlikelyInWord(char byte) {
  constexpr std::string_view kUnlikely =
      "\x81\x82\x83\x84\x86\x87\x88\x89\x8b\x8d\x8e\x8f\x90\x98\x9b\x9d";
  return kUnlikely.find(byte) != std::string_view::npos;
}

// Returns whether a quarter of the bytes that are no ASCII stand right after a small letter, where
// Latin-1 would hardly have them.
bool IsUnlikelyLatin1(std::string_view bytes) {
  std::size_t high = 0;
  std::size_t unlikely = 0;
  char before = '\0';
  for (const char byte : bytes) {
    high += static_cast<unsigned char>(byte) >= 0x80 ? 1 : 0;
    unlikely += before >= 'a' && before <= 'z' && IsUnlikelyInWord(byte) ? 1 : 0;
    before = byte;
  }
  return unlikely > 0 && unlikely >= high / 4;
}

// Returns what ICU takes `bytes` for; "" for Latin-1, and where it is not sure: then `*note` says
// so.
std::string GuessedCharset(std::string_view bytes, std::string* note) {
  CharsetGuess guess{};
  try {
    const ReadStatus status =
        LoadedReaders().guess_charset(bytes.data(), std::min(bytes.size(), kExaminedBytes), &guess);
    if (status == ReadStatus::kNoMemory) throw std::bad_alloc();
    if (status != ReadStatus::kRead) guess = {};
  } catch (const SkipFile& skip) {
    *note = std::string("its encoding is unknown: ") + skip.what();
    return "";
  }
  const std::string charset = &guess.name[0];
  if (guess.confidence < kLeastConfidence) {
    *note = kReadAsLatin1;
    return "";
  }
  return IsLatin1Label(charset) ? "" : charset;
}

}  // namespace

std::string MissingUtf16Mark(std::string_view head) {
  constexpr std::size_t kLeastBytes = 6;  // fewer may be anything
  if (head.size() < kLeastBytes || head.size() % 2 != 0) return "";
  if (head.find('\0') == std::string_view::npos) return "";
  bool has_nul[2] = {false, false};  // NOLINT(modernize-avoid-c-arrays)
  for (std::size_t at = 0; at < head.size(); ++at) {
    if (head[at] == '\0') has_nul[at % 2] = true;
  }
  const bool has_mark = head.substr(0, 2) == "\xff\xfe" || head.substr(0, 2) == "\xfe\xff";
  if (has_mark || has_nul[0] == has_nul[1]) return "";
  const std::size_t low = has_nul[1] ? 0 : 1;
  if (IsMostlyAscii(head, low) || !IsUtf16(head, low)) return "";
  return low == 0 ? "\xff\xfe" : "\xfe\xff";
}

std::string FromUnmarked(std::string bytes, std::string* note) {
  const bool is_utf8 = IsUtf8(bytes);
  if (is_utf8 && !HasShifts(bytes)) return bytes;
  if (is_utf8 || IsOtherThanUtf8(bytes)) {
    const std::string charset = GuessedCharset(bytes, note);
    if (!charset.empty()) {
      if (std::optional<std::string> text = FromCharset(charset, bytes)) return std::move(*text);
    }
  }
  if (!is_utf8 && IsUnlikelyLatin1(bytes)) *note = kReadAsLatin1;
  return Utf8OrLatin1(std::move(bytes));
}

}  // namespace kestan_cli
