// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/language.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kestan::search {
namespace {

// In order of names. Of English and Finnish, stem.cc knows more than the number.
constexpr std::array<Language, 28> kLanguages = {{
    {"arabic", "ar", Script::kArabic, Script::kOther, kAnyLetters},
    {"armenian", "hy", Script::kArmenian, Script::kOther, 0},
    {"basque", "eu", Script::kLatin, Script::kOther, 7},
    {"catalan", "ca", Script::kLatin, Script::kOther, 1},
    {"danish", "da", Script::kLatin, Script::kOther, 0},
    {"dutch", "nl", Script::kLatin, Script::kOther, 2},
    {"english", "en", Script::kLatin, Script::kOther, 2},
    {"finnish", "fi", Script::kLatin, Script::kOther, 7},
    {"french", "fr", Script::kLatin, Script::kOther, 2},
    {"german", "de", Script::kLatin, Script::kOther, 0},
    {"greek", "el", Script::kGreek, Script::kOther, 4},
    {"hindi", "hi", Script::kDevanagari, Script::kOther, 0},
    {"hungarian", "hu", Script::kLatin, Script::kOther, 1},
    {"indonesian", "id", Script::kLatin, Script::kOther, kAnyLetters},
    {"irish", "ga", Script::kLatin, Script::kOther, kAnyLetters},
    {"italian", "it", Script::kLatin, Script::kOther, 1},
    {"lithuanian", "lt", Script::kLatin, Script::kOther, 0},
    {"nepali", "ne", Script::kDevanagari, Script::kOther, 0},
    {"norwegian", "no", Script::kLatin, Script::kOther, 0},
    {"portuguese", "pt", Script::kLatin, Script::kOther, 1},
    {"romanian", "ro", Script::kLatin, Script::kOther, 1},
    {"russian", "ru", Script::kCyrillic, Script::kOther, 0},
    {"serbian", "sr", Script::kCyrillic, Script::kLatin, kAnyLetters},
    {"spanish", "es", Script::kLatin, Script::kOther, 1},
    {"swedish", "sv", Script::kLatin, Script::kOther, 0},
    {"tamil", "ta", Script::kTamil, Script::kOther, kAnyLetters},
    {"turkish", "tr", Script::kLatin, Script::kOther, 2},
    {"yiddish", "yi", Script::kHebrew, Script::kOther, kAnyLetters},
}};

struct ScriptRange {
  char32_t first = 0;
  char32_t last = 0;
  Script script = Script::kOther;
};

constexpr std::array<ScriptRange, 11> kRanges = {{
    {'0', '9', Script::kLatin},
    {'A', 'Z', Script::kLatin},
    {'a', 'z', Script::kLatin},
    {0xc0, 0x24f, Script::kLatin},
    {0x370, 0x3ff, Script::kGreek},
    {0x400, 0x52f, Script::kCyrillic},
    {0x530, 0x58f, Script::kArmenian},
    {0x590, 0x5ff, Script::kHebrew},
    {0x600, 0x77f, Script::kArabic},
    {0x900, 0x97f, Script::kDevanagari},
    {0xb80, 0xbff, Script::kTamil},
}};

// Returns the first character of `utf8`, which is no empty text, as far as three bytes can say.
char32_t FirstCharacter(std::string_view utf8) {
  const auto byte = [utf8](std::size_t i) {
    return i < utf8.size() ? static_cast<char32_t>(static_cast<unsigned char>(utf8[i])) : 0;
  };
  if (byte(0) < 0xc0) return byte(0);
  if (byte(0) < 0xe0) return (byte(0) & 0x1f) << 6 | (byte(1) & 0x3f);
  return (byte(0) & 0x0f) << 12 | (byte(1) & 0x3f) << 6 | (byte(2) & 0x3f);
}

}  // namespace

const Language* FindLanguage(std::string_view name_or_code) {
  const auto* const found =
      std::find_if(kLanguages.begin(), kLanguages.end(), [name_or_code](const Language& language) {
        return language.name == name_or_code || language.code == name_or_code;
      });
  return found == kLanguages.end() ? nullptr : found;
}

const Language* DefaultLanguage() { return FindLanguage("english"); }

std::string LanguageNames() {
  std::string names;
  for (const Language& language : kLanguages) {
    names.append(names.empty() ? "" : ", ").append(language.name);
  }
  return names;
}

const Language* LanguageOfProperty(std::string_view property) {
  return property.empty() ? DefaultLanguage() : FindLanguage(property);
}

Script ScriptOf(std::string_view word) {
  if (word.empty()) return Script::kOther;
  const char32_t first = FirstCharacter(word);
  for (const ScriptRange& range : kRanges) {
    if (first >= range.first && first <= range.last) return range.script;
  }
  return Script::kOther;
}

}  // namespace kestan::search
