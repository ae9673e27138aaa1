// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/transliterate.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "search/process/first_use.h"
#include "search/text/icu.h"
#include "search/text/run_cache.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

// Texts repeat short runs of bytes above 127, so their ASCII is cached. Longer runs are not, which
// bounds the memory.
constexpr std::size_t kMaxKeptBytes = 64;
constexpr std::size_t kLongRunBytes = 256;
constexpr std::size_t kMaxRunBytes = 4096;

// Removes characters that neither separate words nor are heard: soft hyphens, joiners, marks of
// direction and of order. ICU would take a set at the very beginning for a filter of all rules.
const std::u16string kSilent = u"Any-Null; [\\u00AD\\u200B-\\u200F\\u2060\\uFEFF] Remove; ";

class Transliterator {
 public:
  // Borrows `rules`, which ICU names.
  explicit Transliterator(const std::u16string& rules) {
    const std::u16string all_rules = kSilent + rules;
    UErrorCode error = U_ZERO_ERROR;
    transliterator_.reset(icu_.utrans_openU(all_rules.data(), Length(all_rules), UTRANS_FORWARD,
                                            nullptr, 0, nullptr, &error));
    if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    // Without it every letter beyond ASCII would silently become a blank.
    if (U_FAILURE(error))
      throw TransliterationError("ICU lacks the data for other scripts than ASCII");
  }

  std::u16string Apply(const std::u16string& text) const {
    std::u16string result;
    std::int32_t needed = 2 * Length(text);
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR) {
      result = text;
      result.resize(static_cast<std::size_t>(needed));
      error = U_ZERO_ERROR;
      needed = Length(text);
      std::int32_t limit = needed;
      icu_.utrans_transUChars(transliterator_.get(), result.data(), &needed, Length(result), 0,
                              &limit, &error);
    }
    if (U_FAILURE(error)) throw std::bad_alloc();  // nothing else can go wrong
    result.resize(static_cast<std::size_t>(needed));
    return result;
  }

 private:
  struct Closer {
    void operator()(UTransliterator* transliterator) const {
      LoadedIcu().utrans_close(transliterator);
    }
  };

  static std::int32_t Length(const std::u16string& text) {
    return static_cast<std::int32_t>(text.size());
  }

  const Icu& icu_ = LoadedIcu();
  std::unique_ptr<UTransliterator, Closer> transliterator_;
};

// Returns the code of the character at `*at`, U+FFFD where there is none, and moves `*at` past it.
UChar32 NextCode(std::string_view utf8, std::size_t* at) {
  const std::size_t bytes = CharacterBytes(utf8.substr(*at));
  const auto byte_at = [&](std::size_t i) { return static_cast<unsigned char>(utf8[*at + i]); };
  UChar32 code = 0xfffd;
  if (bytes == 1) code = byte_at(0);
  if (bytes > 1) code = byte_at(0) & (0x7f >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) code = code << 6 | (byte_at(i) & 0x3f);
  *at += std::max<std::size_t>(bytes, 1);
  return code;
}

std::u16string Utf16Of(std::string_view utf8) {
  std::u16string text;
  for (std::size_t at = 0; at < utf8.size();) {
    const UChar32 code = NextCode(utf8, &at);
    if (U_IS_SUPPLEMENTARY(code)) {
      text += static_cast<char16_t>(U16_LEAD(code));
      text += static_cast<char16_t>(U16_TRAIL(code));
    } else {
      text += static_cast<char16_t>(code);
    }
  }
  return text;
}

// Returns whether all of `text` is in Latin letters or in punctuation, accents among them.
bool IsLatin(const std::u16string& text) {
  return std::all_of(text.begin(), text.end(), [](char16_t unit) {
    return unit < 0x370 || (unit >= 0x1e00 && unit < 0x1f00) || (unit >= 0x2000 && unit < 0x2070);
  });
}

// Two transliterators: the one for every script takes half a second to make.
std::u16string InLatinLetters(const std::u16string& text) {
  if (IsLatin(text)) {
    static FirstUse<Transliterator> latin;
    return latin.Get([] { return Transliterator(u"Latin-ASCII"); }).Apply(text);
  }
  static FirstUse<Transliterator> any;
  return any.Get([] { return Transliterator(u"Any-Latin; Latin-ASCII"); }).Apply(text);
}

std::uint32_t CategoryMask(UChar32 code) { return U_MASK(LoadedIcu().u_charType(code)); }

// Letters that only modify others, and accents left over, do not separate words.
bool IsModifier(UChar32 character) {
  constexpr std::uint32_t kModifiers = U_GC_LM_MASK | U_GC_M_MASK | U_GC_SK_MASK | U_GC_CF_MASK;
  return (CategoryMask(character) & kModifiers) != 0;
}

std::string AsAscii(const std::u16string& text) {
  std::string ascii;
  for (std::size_t at = 0; at < text.size();) {
    UChar32 character = 0;
    U16_NEXT(text, at, text.size(), character);
    if (character < 0x80) {
      ascii += static_cast<char>(character);
    } else if (!IsModifier(character)) {
      ascii += ' ';
    }
  }
  return ascii;
}

bool IsChineseCharacter(UChar32 code) {
  UErrorCode error = U_ZERO_ERROR;
  return LoadedIcu().uscript_getScript(code, &error) == USCRIPT_HAN;
}

std::string TransliteratedRun(std::string_view run) {
  const std::string ascii = AsAscii(InLatinLetters(Utf16Of(run)));
  std::size_t at = 0;
  return IsChineseCharacter(NextCode(run, &at)) ? " " + ascii + " " : ascii;
}

// Adds `run`, which is UTF-8, to `ascii`.
void AppendRun(std::string_view run, std::string* ascii) {
  thread_local RunCache cache;
  if (run.size() > kMaxKeptBytes) {
    *ascii += TransliteratedRun(run);
    return;
  }
  const std::string* const known = cache.Find(run);
  *ascii += known != nullptr ? *known : cache.Keep(run, TransliteratedRun(run));
}

// Returns whether a run ends before `code`. ICU takes disproportionately long for long runs, so
// they end where a word ends, if possible.
bool EndsLongRun(std::size_t run_bytes, UChar32 code) {
  if (run_bytes < kLongRunBytes) return false;
  if (run_bytes >= kMaxRunBytes) return true;
  return LoadedIcu().u_isalpha(code) == 0 && (CategoryMask(code) & U_GC_M_MASK) == 0;
}

// Moves `*at` past a run of bytes above 127 there. A Chinese character is a run of its own:
// Chinese texts repeat characters, not runs.
//   Returns  the run in UTF-8.
std::string TakeRun(std::string_view utf8, std::size_t* at) {
  std::string run;
  while (*at < utf8.size() && static_cast<unsigned char>(utf8[*at]) >= 0x80) {
    const std::size_t bytes = CharacterBytes(utf8.substr(*at));
    // Chinese characters take at least three bytes; the codes of others matter in long runs only.
    const bool matters = bytes >= 3 || run.size() >= kLongRunBytes;
    std::size_t end = *at;
    const UChar32 code = matters ? NextCode(utf8, &end) : 0;
    const bool is_chinese = IsChineseCharacter(code);
    if (EndsLongRun(run.size(), code) || (is_chinese && !run.empty())) break;
    if (bytes == 0) {
      AppendCharacter(static_cast<unsigned char>(utf8[*at]), &run);
    } else {
      run += utf8.substr(*at, bytes);
    }
    *at += std::max<std::size_t>(bytes, 1);
    if (is_chinese) break;
  }
  return run;
}

}  // namespace

std::string Transliterated(std::string_view utf8) {
  std::string ascii;
  ascii.reserve(utf8.size());
  std::size_t at = 0;
  while (at < utf8.size()) {
    const std::size_t start = FindNonAscii(utf8, at);
    ascii += utf8.substr(at, start - at);
    at = start;
    if (at < utf8.size()) AppendRun(TakeRun(utf8, &at), &ascii);
  }
  return ascii;
}

}  // namespace kestan::search
