// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/folding.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

#include "search/text/icu.h"
#include "search/text/letters.h"
#include "search/text/transliterate.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

void Check(UErrorCode error) {
  if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(error)) throw TransliterationError("ICU lacks the data to fold letters");
}

using Instance = decltype(Icu::unorm2_getNFDInstance);

const UNormalizer2* Normalizer(Instance instance) {
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* const normalizer = instance(&error);
  Check(error);
  return normalizer;
}

std::u16string Normalized(const UNormalizer2* normalizer, const std::u16string& run) {
  std::u16string normalized(run.size() + 16, u'\0');
  const auto length_of = [](const std::u16string& text) {
    return static_cast<std::int32_t>(text.size());
  };
  for (;;) {
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t needed = LoadedIcu().unorm2_normalize(
        normalizer, run.data(), length_of(run), normalized.data(), length_of(normalized), &error);
    const bool fits = error != U_BUFFER_OVERFLOW_ERROR;
    if (fits) Check(error);
    normalized.resize(static_cast<std::size_t>(needed));
    if (fits) return normalized;
  }
}

// The iota under a Greek letter is an accent. Case folding would make a letter of it, at a place
// that depends on the order in which the accents were written.
std::u16string CaseFolded(const std::u16string& run) {
  constexpr char16_t kIotaBelow = u'\u0345';
  std::u16string parts = Normalized(Normalizer(LoadedIcu().unorm2_getNFDInstance), run);
  parts.erase(std::remove(parts.begin(), parts.end(), kIotaBelow), parts.end());
  return Normalized(Normalizer(LoadedIcu().unorm2_getNFKCCasefoldInstance), parts);
}

// Returns `letter` without its accents.
char32_t WithoutAccents(char32_t letter) {
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* const normalizer = Normalizer(LoadedIcu().unorm2_getNFDInstance);
  std::array<char16_t, 32> parts{};  // no decomposition is longer than 18
  const std::int32_t length =
      LoadedIcu().unorm2_getDecomposition(normalizer, static_cast<UChar32>(letter), parts.data(),
                                          static_cast<std::int32_t>(parts.size()), &error);
  if (length <= 0) return letter;
  Check(error);
  UChar32 base = 0;
  const char16_t* const units = parts.data();
  U16_GET(units, 0, 0, length, base);
  return static_cast<char32_t>(base);
}

// Letters that merely look like ones with accents.
bool IsLetterOfItsOwn(char32_t letter) {
  return letter == U'й' || letter == U'ї' || letter == U'ў' || letter == U'ѓ' || letter == U'ќ';
}

bool IsAlphanumeric(char32_t code) {
  return (code >= U'a' && code <= U'z') || (code >= U'0' && code <= U'9');
}

// Takes the characters of a run after case folding, one by one.
class AccentFilter {
 public:
  void Take(char32_t code) {
    if (code < 0x80) return TakeAscii(code);
    const std::uint32_t category = U_MASK(LoadedIcu().u_charType(static_cast<UChar32>(code)));
    if ((category & U_GC_M_MASK) != 0) {
      if (has_base_ && !drops_marks_) folded_ += code;
    } else if ((category & (U_GC_L_MASK | U_GC_N_MASK)) != 0) {
      TakeLetter(code);
    } else if ((category & U_GC_CF_MASK) == 0) {
      Separate();
    }
  }

  std::u32string Finish() { return std::move(folded_); }

 private:
  void TakeAscii(char32_t code) {
    if (!IsAlphanumeric(code)) return Separate();
    folded_ += code;
    has_base_ = drops_marks_ = true;
  }

  void Separate() {
    if (has_base_) folded_ += kBetweenWords;
    has_base_ = false;
  }

  void TakeLetter(char32_t code) {
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = LoadedIcu().uscript_getScript(static_cast<UChar32>(code), &error);
    const bool is_latin = script == USCRIPT_LATIN;
    drops_marks_ = is_latin || script == USCRIPT_GREEK || script == USCRIPT_CYRILLIC;
    has_base_ = true;
    if (drops_marks_ && !IsLetterOfItsOwn(code)) code = WithoutAccents(code);
    if (is_latin && code >= 0x80 && AppendInAscii(code)) return;
    folded_ += code;
  }

  // Appends what transliteration makes of a Latin letter, if that is letters of ASCII.
  bool AppendInAscii(char32_t letter) {
    std::string utf8;
    AppendCharacter(letter, &utf8);
    const std::string ascii = LowerCase(std::string_view(Transliterated(utf8)));
    if (ascii.empty()) return false;
    for (const char byte : ascii) {
      if (!IsAsciiLetter(byte)) return false;
    }
    folded_.append(ascii.begin(), ascii.end());
    return true;
  }

  std::u32string folded_;
  bool has_base_ = false;    // a letter or a digit precedes
  bool drops_marks_ = true;  // and stands without accents
};

}  // namespace

std::u32string Folded(const std::u16string& run) {
  const std::u16string folded = CaseFolded(run);
  AccentFilter filter;
  for (std::size_t at = 0; at < folded.size();) {
    UChar32 code = 0;
    U16_NEXT(folded, at, folded.size(), code);
    filter.Take(static_cast<char32_t>(code));
  }
  return filter.Finish();
}

}  // namespace kestan::search
