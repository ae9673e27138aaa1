// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/decode.h"

#include <kestan/search.h>

#include <cstddef>
#include <utility>

#include "cli/extract/charset/latin1.h"
#include "cli/extract/charset/unmarked.h"

namespace kestan_cli {
namespace {

using kestan::search::AppendCharacter;

constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
constexpr char32_t kUnknown = 0xfffd;

// Reads the characters of UTF-16 text after its byte order mark. An odd last byte is left out.
class Utf16Reader {
 public:
  explicit Utf16Reader(std::string_view bytes)
      : bytes_(bytes), low_(static_cast<unsigned char>(bytes[0]) == 0xff ? 0 : 1) {}

  // Returns false at the end.
  bool Next(char32_t* character) {
    if (!IsUnitAt(at_)) return false;
    *character = UnitAt(at_);
    at_ += 2;
    if (*character < 0xd800 || *character >= 0xe000) return true;
    const bool is_pair = *character < 0xdc00 && IsUnitAt(at_) && (UnitAt(at_) & 0xfc00) == 0xdc00;
    if (is_pair) {
      *character = 0x10000 + ((*character & 0x3ff) << 10) + (UnitAt(at_) & 0x3ff);
      at_ += 2;
    } else {
      *character = kUnknown;
    }
    return true;
  }

 private:
  bool IsUnitAt(std::size_t at) const { return at + 2 <= bytes_.size(); }

  char32_t UnitAt(std::size_t at) const {
    const auto low = static_cast<unsigned char>(bytes_[at + low_]);
    const auto high = static_cast<unsigned char>(bytes_[at + 1 - low_]);
    return static_cast<char32_t>(high << 8 | low);
  }

  std::string_view bytes_;
  std::size_t low_;  // where in a unit its low byte is
  std::size_t at_ = 2;
};

std::string FromUtf16(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() / 2);
  Utf16Reader reader(bytes);
  for (char32_t character = 0; reader.Next(&character);) AppendCharacter(character, &text);
  return text;
}

}  // namespace

bool StartsAsUtf16(std::string_view bytes) {
  return bytes.substr(0, 2) == "\xff\xfe" || bytes.substr(0, 2) == "\xfe\xff";
}

bool IsBrokenUtf16(std::string_view bytes) { return StartsAsUtf16(bytes) && bytes.size() % 2 != 0; }

std::optional<std::string> DecodedText(std::string bytes, std::string* note) {
  bool is_marked = true;
  if (StartsAsUtf16(bytes)) {
    bytes = FromUtf16(bytes);
  } else if (bytes.compare(0, kUtf8Mark.size(), kUtf8Mark) == 0) {
    bytes.erase(0, kUtf8Mark.size());
  } else {
    is_marked = false;
  }
  if (bytes.find('\0') != std::string::npos) return std::nullopt;
  return is_marked ? Utf8OrLatin1(std::move(bytes)) : FromUnmarked(std::move(bytes), note);
}

}  // namespace kestan_cli
