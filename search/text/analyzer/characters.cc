// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/characters.h"

#include <optional>

#include "search/text/icu.h"

namespace kestan::search {
namespace {

constexpr char32_t kZeroWidthSpace = 0x200b;  // which separates words in scripts without blanks

bool IsIn(char32_t code, char32_t first, char32_t last) { return code >= first && code <= last; }

// Knows the characters that most texts consist of, so that ICU is asked for the others only.
std::optional<CharacterClass> ClassOfCommon(char32_t code) {
  const bool is_letter =
      IsIn(code, 0xc0, 0x24f)
          ? code != 0xd7 && code != 0xf7
          : IsIn(code, 0x400, 0x481) || IsIn(code, 0x3a3, 0x3ce) || IsIn(code, 0xac00, 0xd7a3);
  if (is_letter) return CharacterClass::kLetter;
  if (IsCommonPaired(code)) return CharacterClass::kPaired;
  const bool is_punctuation = IsIn(code, 0x2010, 0x2027) || IsIn(code, 0x3000, 0x3004);
  if (is_punctuation) return CharacterClass::kOther;
  return std::nullopt;
}

// Letters that write an apostrophe or a breathing.
bool IsApostrophe(char32_t code) { return IsIn(code, 0x2b9, 0x2bf); }

CharacterClass ClassOfLetter(char32_t code) {
  constexpr char32_t kLongVowel = 0xff70;  // of Japanese; it has no script of its own
  if (code == kLongVowel) return CharacterClass::kPaired;
  UErrorCode error = U_ZERO_ERROR;
  switch (LoadedIcu().uscript_getScript(static_cast<UChar32>(code), &error)) {
    case USCRIPT_HAN:
    case USCRIPT_HIRAGANA:
    case USCRIPT_KATAKANA:
      return CharacterClass::kPaired;
    case USCRIPT_THAI:
    case USCRIPT_LAO:
    case USCRIPT_KHMER:
    case USCRIPT_MYANMAR:
      return CharacterClass::kUnspaced;
    default:
      return CharacterClass::kLetter;
  }
}

}  // namespace

CharacterClass ClassOf(char32_t code) {
  if (const auto known = ClassOfCommon(code)) return *known;
  const std::uint32_t category = U_MASK(LoadedIcu().u_charType(static_cast<UChar32>(code)));
  const bool is_voicing = IsIn(code, 0xff9e, 0xff9f);  // of a Japanese syllable of half width
  if (is_voicing) return CharacterClass::kMark;
  if ((category & U_GC_CF_MASK) != 0 && code != kZeroWidthSpace) return CharacterClass::kMark;
  if ((category & U_GC_M_MASK) != 0) {
    const CharacterClass script = ClassOfLetter(code);
    return script == CharacterClass::kUnspaced ? script : CharacterClass::kMark;
  }
  const bool is_word = (category & (U_GC_L_MASK | U_GC_N_MASK)) != 0 && !IsApostrophe(code);
  return is_word ? ClassOfLetter(code) : CharacterClass::kOther;
}

}  // namespace kestan::search
