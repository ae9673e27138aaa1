#include "search/vocabulary/stem.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kestan::search {
namespace {

constexpr std::size_t kMinLetters = 4;    // of a word that has a stem
constexpr std::size_t kMinInflected = 3;  // letters before -s, -ed, -ing
constexpr std::size_t kMinDerived = 4;    // letters before the endings below

// Endings that make one word of another, as they are once a last e is gone and a last y is an i:
// able, ity, ly. Taken off one after the other: computation, organizational.
constexpr std::array<std::string_view, 22> kDerivations = {
    "ment", "ness", "abl", "ibl", "anc", "enc", "ant", "ent", "ion", "ist", "ism",
    "iti",  "ous",  "ful", "al",  "li",  "iv",  "er",  "or",  "ic",  "at",  "iz"};

bool IsVowel(char letter) {
  return std::string_view("aeiouy").find(letter) != std::string_view::npos;
}

bool EndsWith(std::string_view word, std::string_view ending) {
  return word.size() >= ending.size() && word.substr(word.size() - ending.size()) == ending;
}

// Returns whether `text` has a vowel.
bool HasVowel(std::string_view text) { return std::any_of(text.begin(), text.end(), IsVowel); }

// Returns whether `text` has a consonant after a vowel, as each stem of a longer word has.
bool HasSyllable(std::string_view text) {
  const auto* const vowel = std::find_if(text.begin(), text.end(), IsVowel);
  return std::any_of(vowel, text.end(), [](char letter) { return !IsVowel(letter); });
}

// ponies, horses. The s of glass, focus and analysis is not an ending.
void TakeOffPlural(std::string* word) {
  if (EndsWith(*word, "ies") && word->size() > kMinLetters) {
    word->replace(word->size() - 3, 3, "y");
  } else if (EndsWith(*word, "s") && !EndsWith(*word, "ss") && !EndsWith(*word, "us") &&
             !EndsWith(*word, "is")) {
    word->pop_back();
  }
}

// planned, planning: the last letter was doubled for the ending. That of fall, pass and buzz was
// not.
void UndoDoubling(std::string* word) {
  const std::size_t size = word->size();
  if (size <= kMinInflected || (*word)[size - 2] != word->back()) return;
  if (std::string_view("lsz").find(word->back()) == std::string_view::npos) word->pop_back();
}

// studied, needed, needing; but not need.
void TakeOffTense(std::string* word) {
  if (EndsWith(*word, "ied") && word->size() > kMinLetters) {
    word->replace(word->size() - 3, 3, "y");
    return;
  }
  if (EndsWith(*word, "eed")) return;
  for (const std::string_view ending : {"ing", "ed"}) {
    if (!EndsWith(*word, ending) || word->size() - ending.size() < kMinInflected) continue;
    const std::string_view before = std::string_view(*word).substr(0, word->size() - ending.size());
    if (!HasVowel(before)) continue;
    word->resize(before.size());
    UndoDoubling(word);
    return;
  }
}

// The e and the y that come and go before endings: solve, solving; study, studies.
void FoldLastVowel(std::string* word) {
  if (word->size() <= kMinInflected) return;
  if (word->back() == 'e') {
    word->pop_back();
  } else if (word->back() == 'y' && !IsVowel((*word)[word->size() - 2])) {
    word->back() = 'i';
  }
}

// Returns whether there was an ending to take off.
bool TakeOffDerivation(std::string* word) {
  for (const std::string_view ending : kDerivations) {
    if (!EndsWith(*word, ending) || word->size() - ending.size() < kMinDerived) continue;
    const std::string_view before = std::string_view(*word).substr(0, word->size() - ending.size());
    if (!HasSyllable(before)) continue;
    word->resize(before.size());
    FoldLastVowel(word);
    return true;
  }
  return false;
}

}  // namespace

std::string Stem(std::string_view word) {
  std::string stem(word);
  if (stem.size() < kMinLetters) return stem;
  TakeOffPlural(&stem);
  TakeOffTense(&stem);
  FoldLastVowel(&stem);
  while (TakeOffDerivation(&stem)) {
  }
  return stem;
}

std::string_view StemPrefix(std::string_view stem) {
  if (!stem.empty() && (stem.back() == 'i' || stem.back() == 'y')) stem.remove_suffix(1);
  return stem;
}

}  // namespace kestan::search
