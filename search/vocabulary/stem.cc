// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/stem.h"

#include <kestan/search/text.h>

#include <cstddef>
#include <new>

#include "search/text/stemmer_library.h"

namespace kestan::search {
namespace {

bool EndsWith(std::string_view word, std::string_view ending) {
  return word.size() >= ending.size() && word.substr(word.size() - ending.size()) == ending;
}

// study and studi, hop(ing) and hope, possib(ility) and possibl, ski(es) and sky; the stems of
// dying, lying and tying are die, lie and tie.
unsigned ChangedInEnglish(std::string_view stem) {
  if (EndsWith(stem, "ie")) return 2;
  const bool may_change =
      EndsWith(stem, "i") || EndsWith(stem, "e") || EndsWith(stem, "y") || EndsWith(stem, "bl");
  return may_change ? 1 : 0;
}

// A double consonant before the last vowels becomes a single one.
unsigned ChangedInFinnish(std::string_view stem) {
  unsigned vowels = 0;
  while (vowels < stem.size() && std::string_view("aeiouy").find(stem[stem.size() - 1 - vowels]) !=
                                     std::string_view::npos) {
    ++vowels;
  }
  return vowels + 1;
}

unsigned ChangedLetters(const Language& language, std::string_view stem) {
  if (language.code == "en") return ChangedInEnglish(stem);
  if (language.code == "fi") return ChangedInFinnish(stem);
  return language.changed_letters;
}

}  // namespace

void Stemmer::Delete::operator()(sb_stemmer* stemmer) const {
  LoadedStemmerLibrary().sb_stemmer_delete(stemmer);
}

Status Stemmer::Open() {
  if (stemmer_ != nullptr) return {};
  const StemmerLibrary& library = LoadedStemmerLibrary();
  if (!library.error.empty()) return {StatusCode::kSystem, library.error};
  const std::string name(language_->name);
  stemmer_.reset(library.sb_stemmer_new(name.c_str(), nullptr));
  if (stemmer_ != nullptr) return {};
  return {StatusCode::kSystem, "libstemmer knows no word forms of " + name};
}

bool Stemmer::HasForms(std::string_view word) const {
  if (language_ == nullptr || word.size() <= CharacterBytes(word)) return false;
  const Script script = ScriptOf(word);
  return script != Script::kOther &&
         (script == language_->script || script == language_->other_script);
}

std::string_view Stemmer::Stem(std::string_view word) {
  const StemmerLibrary& library = LoadedStemmerLibrary();
  const auto* const bytes = reinterpret_cast<const sb_symbol*>(word.data());
  const sb_symbol* const stem =
      library.sb_stemmer_stem(stemmer_.get(), bytes, static_cast<int>(word.size()));
  if (stem == nullptr) throw std::bad_alloc();
  const auto size = static_cast<std::size_t>(library.sb_stemmer_length(stemmer_.get()));
  return {reinterpret_cast<const char*>(stem), size};
}

std::string_view Stemmer::PrefixOf(std::string_view stem) const {
  unsigned changed = ChangedLetters(*language_, stem);
  if (changed == kAnyLetters) return "";
  std::string_view prefix = stem;
  for (; changed > 0 && !prefix.empty(); --changed) {
    while (prefix.size() > 1 && ContinuesCharacter(prefix.back())) prefix.remove_suffix(1);
    prefix.remove_suffix(1);
  }
  return prefix.empty() ? stem.substr(0, CharacterBytes(stem)) : prefix;
}

}  // namespace kestan::search
