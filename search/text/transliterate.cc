#include "search/text/transliterate.h"

#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

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
constexpr const char16_t* kSilent = u"Any-Null; [\\u00AD\\u200B-\\u200F\\u2060\\uFEFF] Remove; ";

class Transliterator {
 public:
  // Borrows `rules`, which ICU names.
  explicit Transliterator(const char16_t* rules) {
    UErrorCode error = U_ZERO_ERROR;
    transliterator_.reset(icu::Transliterator::createInstance(icu::UnicodeString(kSilent) + rules,
                                                              UTRANS_FORWARD, error));
    if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    // Without it every letter beyond ASCII would silently become a blank.
    if (U_FAILURE(error))
      throw TransliterationError("ICU lacks the data for other scripts than ASCII");
  }

  void Apply(icu::UnicodeString* text) const {
    transliterator_->transliterate(*text);
    if (text->isBogus()) throw std::bad_alloc();  // the only sign that ICU gives
  }

 private:
  std::unique_ptr<icu::Transliterator> transliterator_;
};

// Returns whether all of `text` is in Latin letters or in punctuation, accents among them.
bool IsLatin(const icu::UnicodeString& text) {
  for (std::int32_t i = 0; i < text.length(); ++i) {
    const char16_t unit = text[i];
    if (unit >= 0x370 && (unit < 0x1e00 || unit >= 0x1f00) && (unit < 0x2000 || unit >= 0x2070)) {
      return false;
    }
  }
  return true;
}

// Two transliterators: the one for every script takes half a second to make.
void WriteInLatinLetters(icu::UnicodeString* text) {
  if (IsLatin(*text)) {
    static const Transliterator kLatin(u"Latin-ASCII");
    return kLatin.Apply(text);
  }
  static const Transliterator kAny(u"Any-Latin; Latin-ASCII");
  kAny.Apply(text);
}

// Letters that only modify others, and accents left over, do not separate words.
bool IsModifier(UChar32 character) {
  constexpr std::uint32_t kModifiers = U_GC_LM_MASK | U_GC_M_MASK | U_GC_SK_MASK | U_GC_CF_MASK;
  return (U_GET_GC_MASK(character) & kModifiers) != 0;
}

std::string AsAscii(const icu::UnicodeString& text) {
  std::string ascii;
  for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
    const UChar32 character = text.char32At(i);
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
  return uscript_getScript(code, &error) == USCRIPT_HAN;
}

std::string TransliteratedRun(std::string_view run) {
  icu::UnicodeString text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(run.data(), static_cast<std::int32_t>(run.size())));
  const bool is_word = IsChineseCharacter(text.char32At(0));
  WriteInLatinLetters(&text);
  return is_word ? " " + AsAscii(text) + " " : AsAscii(text);
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

// Returns the code of `character`, U+FFFF if it is not one.
UChar32 CodeOf(std::string_view character) {
  const auto text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(character.data(), static_cast<std::int32_t>(character.size())));
  return text.char32At(0);
}

// Returns whether a run ends before `code`. ICU takes disproportionately long for long runs, so
// they end where a word ends, if possible.
bool EndsLongRun(std::size_t run_bytes, UChar32 code) {
  if (run_bytes < kLongRunBytes) return false;
  if (run_bytes >= kMaxRunBytes) return true;
  return u_isalpha(code) == 0 && (U_GET_GC_MASK(code) & U_GC_M_MASK) == 0;
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
    const UChar32 code = matters ? CodeOf(utf8.substr(*at, bytes)) : 0;
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
