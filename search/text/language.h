// SPDX-License-Identifier: GPL-3.0-or-later
// The languages whose word forms are known.
#ifndef KESTAN_SEARCH_TEXT_LANGUAGE_H_
#define KESTAN_SEARCH_TEXT_LANGUAGE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace kestan::search {

enum class Script : std::uint8_t {
  kOther,
  kLatin,
  kArabic,
  kArmenian,
  kCyrillic,
  kDevanagari,
  kGreek,
  kHebrew,
  kTamil,
};

// A language, as libstemmer knows it.
struct Language {
  std::string_view name;  // in English, with small letters
  std::string_view code;  // of two letters, of ISO 639-1
  Script script = Script::kLatin;
  Script other_script = Script::kOther;  // a second one that it is written in

  // A stem and its words are the same but for so many last characters of the stem at most: the y of
  // happy is the i of happi. kAnyLetters: words of the stem may begin with other letters.
  unsigned changed_letters = 0;
};

constexpr unsigned kAnyLetters = 64;

// Returns the language of that name or code; null if there is none.
const Language* FindLanguage(std::string_view name_or_code);

// English.
const Language* DefaultLanguage();

// Returns the names of all languages, each but the last followed by ", ".
std::string LanguageNames();

// The name of no language: words have no other forms.
constexpr std::string_view kNoLanguage = "none";

// Returns the language that the property "language" of an index, `property`, names; null if words
// have no other forms. An index without the property is in English; one in a language that this
// version does not know has no forms.
const Language* LanguageOfProperty(std::string_view property);

// Returns the script of the first character of `word`, in UTF-8. A digit counts as a Latin letter.
Script ScriptOf(std::string_view word);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_LANGUAGE_H_
