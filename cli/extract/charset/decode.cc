#include "cli/extract/charset/decode.h"

#include <array>
#include <cstddef>
#include <utility>

#include "search/text/utf8.h"

namespace kestan_cli {
namespace {

using kestan::search::AppendCharacter;
using kestan::search::FindNonUtf8;

constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
constexpr char32_t kUnknown = 0xfffd;

// Latin-1 has control characters from 0x80 to 0x9f; Windows has these there, and files called
// Latin-1 do as well. 0 is none.
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

// The units of UTF-16 text after its mark. An odd last byte is no unit.
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

bool StartsAsUtf16(std::string_view bytes) {
  return bytes.substr(0, 2) == "\xff\xfe" || bytes.substr(0, 2) == "\xfe\xff";
}

bool IsBrokenUtf16(std::string_view bytes) { return StartsAsUtf16(bytes) && bytes.size() % 2 != 0; }

std::string Utf8OrLatin1(std::string bytes) {
  const std::size_t other = FindNonUtf8(bytes, 0);
  if (other == bytes.size()) return bytes;
  return WithLatin1Repaired(bytes, other);
}

std::optional<std::string> DecodedText(std::string bytes) {
  if (StartsAsUtf16(bytes)) {
    bytes = FromUtf16(bytes);
  } else if (bytes.compare(0, kUtf8Mark.size(), kUtf8Mark) == 0) {
    bytes.erase(0, kUtf8Mark.size());
  }
  if (bytes.find('\0') != std::string::npos) return std::nullopt;
  return Utf8OrLatin1(std::move(bytes));
}

}  // namespace kestan_cli
