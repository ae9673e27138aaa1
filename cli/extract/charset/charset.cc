// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/charset/charset.h"

#include <kestan/search.h>

#include <array>
#include <cstddef>
#include <exception>
#include <new>
#include <utility>

#include "cli/extract/charset/ascii.h"
#include "cli/extract/charset/latin1.h"
#include "cli/extract/module/loaded_readers.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

using kestan::search::AppendCharacter;

constexpr std::string_view kLatin1 = "windows-1252";
constexpr std::string_view kUtf8 = "utf-8";
constexpr std::string_view kLatin10 = "iso-8859-16";  // which ICU does not have
constexpr std::string_view kUntrue = "none";          // cannot be true: the label was read as ASCII

struct Charset {
  std::string_view converter;  // as ICU calls it
  std::string_view labels;
};

// What the labels mean to browsers. ICU knows other labels too, and takes some of these for smaller
// character sets than pages are written in.
constexpr std::array kCharsets{
    Charset{kUtf8,
            "unicode-1-1-utf-8 unicode11utf8 unicode20utf8 utf-8 utf8 x-unicode20utf8 cp65001"},
    Charset{kLatin1,
            "ansi_x3.4-1968 ascii cp1252 cp819 csisolatin1 ibm819 iso-8859-1 iso-ir-100 iso8859-1 "
            "iso88591 iso_8859-1 iso_8859-1:1987 l1 latin1 us-ascii windows-1252 x-cp1252"},
    Charset{"windows-1254",
            "cp1254 csisolatin5 iso-8859-9 iso-ir-148 iso8859-9 iso88599 iso_8859-9 "
            "iso_8859-9:1989 l5 latin5 windows-1254 x-cp1254"},
    Charset{"windows-874",
            "dos-874 iso-8859-11 iso8859-11 iso885911 tis-620 tis620 windows-874 cp874"},
    Charset{"gb18030",
            "chinese csgb2312 csiso58gb231280 gb2312 gb_2312 gb_2312-80 gbk iso-ir-58 x-gbk "
            "gb18030 cp936 ms936 windows-936 euc-cn"},
    Charset{"Big5-HKSCS", "big5 big5-hkscs cn-big5 csbig5 x-x-big5 cp950 windows-950"},
    Charset{"ibm-943_P15A-2003",
            "csshiftjis ms932 ms_kanji shift-jis shift_jis sjis windows-31j x-sjis cp932 "
            "windows-932 cswindows31j"},
    Charset{"euc-jp", "cseucpkdfmtjapanese euc-jp x-euc-jp eucjp"},
    Charset{"ISO_2022,locale=ja,version=4", "csiso2022jp iso-2022-jp"},
    Charset{"windows-949",
            "cseuckr csksc56011987 euc-kr iso-ir-149 korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 "
            "ksc_5601 windows-949 cp949 uhc"},
    Charset{"iso-8859-2",
            "csisolatin2 iso-8859-2 iso-ir-101 iso8859-2 iso88592 iso_8859-2 iso_8859-2:1987 l2 "
            "latin2"},
    Charset{"iso-8859-3",
            "csisolatin3 iso-8859-3 iso-ir-109 iso8859-3 iso88593 iso_8859-3 iso_8859-3:1988 l3 "
            "latin3"},
    Charset{"iso-8859-4",
            "csisolatin4 iso-8859-4 iso-ir-110 iso8859-4 iso88594 iso_8859-4 iso_8859-4:1988 l4 "
            "latin4"},
    Charset{"iso-8859-5",
            "csisolatincyrillic cyrillic iso-8859-5 iso-ir-144 iso8859-5 iso88595 iso_8859-5 "
            "iso_8859-5:1988"},
    Charset{"iso-8859-6",
            "arabic asmo-708 csiso88596e csiso88596i csisolatinarabic ecma-114 iso-8859-6 "
            "iso-8859-6-e iso-8859-6-i iso-ir-127 iso8859-6 iso88596 iso_8859-6 iso_8859-6:1987"},
    Charset{"iso-8859-7",
            "csisolatingreek ecma-118 elot_928 greek greek8 iso-8859-7 iso-ir-126 iso8859-7 "
            "iso88597 iso_8859-7 iso_8859-7:1987 sun_eu_greek"},
    Charset{"iso-8859-8",
            "csiso88598e csisolatinhebrew hebrew iso-8859-8 iso-8859-8-e iso-ir-138 iso8859-8 "
            "iso88598 iso_8859-8 iso_8859-8:1988 visual csiso88598i iso-8859-8-i logical"},
    Charset{"iso-8859-10", "csisolatin6 iso-8859-10 iso-ir-157 iso8859-10 iso885910 l6 latin6"},
    Charset{"iso-8859-13", "iso-8859-13 iso8859-13 iso885913"},
    Charset{"iso-8859-14", "iso-8859-14 iso8859-14 iso885914"},
    Charset{"iso-8859-15", "csisolatin9 iso-8859-15 iso8859-15 iso885915 iso_8859-15 l9 latin9"},
    Charset{kLatin10, "iso-8859-16 iso8859-16 iso885916"},
    Charset{"ibm-866", "866 cp866 csibm866 ibm866"},
    Charset{"koi8-r", "cskoi8r koi koi8 koi8-r koi8_r"},
    Charset{"koi8-u", "koi8-ru koi8-u"},
    Charset{"macintosh", "csmacintosh mac macintosh x-mac-roman"},
    Charset{"x-mac-cyrillic", "x-mac-cyrillic x-mac-ukrainian"},
    Charset{"windows-1250", "cp1250 windows-1250 x-cp1250"},
    Charset{"windows-1251", "cp1251 windows-1251 x-cp1251"},
    Charset{"windows-1253", "cp1253 windows-1253 x-cp1253"},
    Charset{"windows-1255", "cp1255 windows-1255 x-cp1255"},
    Charset{"windows-1256", "cp1256 windows-1256 x-cp1256"},
    Charset{"windows-1257", "cp1257 windows-1257 x-cp1257"},
    Charset{"windows-1258", "cp1258 windows-1258 x-cp1258"},
    Charset{kUntrue,
            "csunicode iso-10646-ucs-2 ucs-2 unicode unicodefeff unicodefffe utf-16 utf-16le "
            "utf-16be utf-32 utf-32le utf-32be ucs-4 iso-10646-ucs-4 x-user-defined"},
};

// The upper half of ISO-8859-16 from 0xa0 on.
constexpr std::array<char16_t, 96> kLatin10Signs{
    0x00a0, 0x0104, 0x0105, 0x0141, 0x20ac, 0x201e, 0x0160, 0x00a7, 0x0161, 0x00a9, 0x0218, 0x00ab,
    0x0179, 0x00ad, 0x017a, 0x017b, 0x00b0, 0x00b1, 0x010c, 0x0142, 0x017d, 0x201d, 0x00b6, 0x00b7,
    0x017e, 0x010d, 0x0219, 0x00bb, 0x0152, 0x0153, 0x0178, 0x017c, 0x00c0, 0x00c1, 0x00c2, 0x0102,
    0x00c4, 0x0106, 0x00c6, 0x00c7, 0x00c8, 0x00c9, 0x00ca, 0x00cb, 0x00cc, 0x00cd, 0x00ce, 0x00cf,
    0x0110, 0x0143, 0x00d2, 0x00d3, 0x00d4, 0x0150, 0x00d6, 0x015a, 0x0170, 0x00d9, 0x00da, 0x00db,
    0x00dc, 0x0118, 0x021a, 0x00df, 0x00e0, 0x00e1, 0x00e2, 0x0103, 0x00e4, 0x0107, 0x00e6, 0x00e7,
    0x00e8, 0x00e9, 0x00ea, 0x00eb, 0x00ec, 0x00ed, 0x00ee, 0x00ef, 0x0111, 0x0144, 0x00f2, 0x00f3,
    0x00f4, 0x0151, 0x00f6, 0x015b, 0x0171, 0x00f9, 0x00fa, 0x00fb, 0x00fc, 0x0119, 0x021b, 0x00ff};

std::string FromLatin10(std::string_view bytes) {
  std::string text;
  for (const char each : bytes) {
    const auto byte = static_cast<unsigned char>(each);
    AppendCharacter(byte < 0xa0 ? byte : kLatin10Signs.at(byte - 0xa0U), &text);
  }
  return text;
}

// Collects UTF-16 in pieces. A surrogate pair may be split between two.
class Utf8Builder {
 public:
  void Add(const char16_t* units, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) AddUnit(units[i]);
  }

  std::string Finish() {
    if (lead_ != 0) AppendCharacter(0xfffd, &text_);
    return std::move(text_);
  }

 private:
  void AddUnit(char16_t unit) {
    const bool is_trail = (unit & 0xfc00) == 0xdc00;
    const bool is_pair = lead_ != 0 && is_trail;
    if (lead_ != 0 && !is_pair) AppendCharacter(0xfffd, &text_);
    const char32_t lead = lead_;
    lead_ = (unit & 0xfc00) == 0xd800 ? unit : 0;
    if (lead_ != 0) return;
    if (is_pair) {
      AppendCharacter(0x10000 + ((lead & 0x3ff) << 10) + (unit & 0x3ff), &text_);
    } else {
      AppendCharacter(is_trail ? 0xfffd : unit, &text_);
    }
  }

  std::string text_;
  char16_t lead_ = 0;
};

// Takes the pieces that a decoder sends. No exception may pass through it.
struct Decoding {
  Utf16Sink Sink() {
    return {this, [](void* decoding, const char16_t* units, std::size_t count) noexcept {
              static_cast<Decoding*>(decoding)->Add(units, count);
            }};
  }

  void Add(const char16_t* units, std::size_t count) noexcept {
    if (lacks_memory) return;
    try {
      builder.Add(units, count);
    } catch (const std::exception&) {
      lacks_memory = true;
    }
  }

  Utf8Builder builder;
  bool lacks_memory = false;
};

// Decodes all of `bytes` with ICU's converter `name`, and sets `*is_faulty` if some are not
// characters.
//   Returns  nothing if there is no such converter.
std::optional<std::string> Converted(const std::string& name, std::string_view bytes,
                                     bool* is_faulty) {
  Decoding decoding;
  const ReadStatus status = LoadedReaders().decode_charset(name.c_str(), bytes.data(), bytes.size(),
                                                           decoding.Sink(), is_faulty);
  if (decoding.lacks_memory || status == ReadStatus::kNoMemory) throw std::bad_alloc();
  if (status != ReadStatus::kRead) return std::nullopt;
  return decoding.builder.Finish();
}

// Returns `label` trimmed and in lower case; nothing if it holds a character that no label has: ICU
// reads options after a comma and a path after a slash.
std::string Normal(std::string_view label) {
  constexpr std::string_view kInNames = "abcdefghijklmnopqrstuvwxyz0123456789-_.:+()";
  std::string normal = LowerCase(Trimmed(label, kHtmlWhiteSpace));
  if (normal.find_first_not_of(kInNames) != std::string::npos) normal.clear();
  return normal;
}

// Finds what `label` means to browsers.
//   Returns  nullptr if they do not know it.
const Charset* FindCharset(const std::string& label) {
  const std::string sought = " " + label + " ";
  for (const Charset& charset : kCharsets) {
    const std::string labels = " " + std::string(charset.labels) + " ";
    if (labels.find(sought) != std::string::npos) return &charset;
  }
  return nullptr;
}

// Decodes `bytes` as a character set that is not in the table but in ICU. In an encoding that
// shifts, such a label is trusted only if every byte is valid.
std::optional<std::string> FromForeignCharset(const std::string& label, std::string_view bytes) {
  const CharsetKind kind = LoadedReaders().examine_charset(label.c_str());
  if (kind == CharsetKind::kNoMemory) throw std::bad_alloc();
  if (kind == CharsetKind::kUnusable) return std::nullopt;
  bool is_faulty = false;
  std::optional<std::string> text = Converted(label, bytes, &is_faulty);
  if (is_faulty && kind == CharsetKind::kShifting) return std::nullopt;
  return text;
}

}  // namespace

bool IsLatin1Label(std::string_view label) {
  const Charset* const charset = FindCharset(Normal(label));
  return charset != nullptr && charset->converter == kLatin1;
}

std::optional<std::string> FromCharset(std::string_view label, std::string_view bytes) {
  const std::string normal = Normal(label);
  if (normal.empty()) return std::nullopt;
  const Charset* const charset = FindCharset(normal);
  if (charset == nullptr) return FromForeignCharset(normal, bytes);
  if (charset->converter == kUntrue) return std::nullopt;
  if (charset->converter == kUtf8) return Utf8OrLatin1(std::string(bytes));
  if (charset->converter == kLatin10) return FromLatin10(bytes);
  bool is_faulty = false;
  auto text = Converted(std::string(charset->converter), bytes, &is_faulty);
  if (text.has_value()) return text;
  throw SkipFile(SkipKind::kUnreadable, "ICU cannot read the encoding " + normal);
}

}  // namespace kestan_cli
