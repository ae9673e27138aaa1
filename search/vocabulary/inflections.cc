#include "search/vocabulary/inflections.h"

#include <algorithm>
#include <utility>

namespace kestan::search {
namespace {

constexpr std::size_t kMinLetters = 4;  // of a word that is split into stem and ending
constexpr std::size_t kMinStem = 3;

bool EndsWith(std::string_view word, std::string_view end) {
  return word.size() >= end.size() && word.substr(word.size() - end.size()) == end;
}

// Returns the ending of an inflected word, empty if `word` seems to have none. The s of glass,
// focus and analysis is not an ending.
std::string_view EndingOf(std::string_view word) {
  if (EndsWith(word, "ss") || EndsWith(word, "us") || EndsWith(word, "is")) return "";
  for (const std::string_view ending : {"ing", "ed", "es", "s"}) {
    if (EndsWith(word, ending) && word.size() - ending.size() >= kMinStem) return ending;
  }
  return "";
}

// A list of different words, in the order in which they were added.
class WordList {
 public:
  explicit WordList(const std::string& word) : words_{word} {}

  void Add(const std::string& word) {
    if (word.size() < kMinStem) return;
    if (std::find(words_.begin(), words_.end(), word) == words_.end()) words_.push_back(word);
  }

  void AddInflectionsOf(const std::string& stem) {
    for (const char* ending : {"", "s", "es", "ed", "ing", "e"}) Add(stem + ending);
  }

  std::vector<std::string> Take() { return std::move(words_); }

 private:
  std::vector<std::string> words_;
};

// Returns what comes before y, ies and ied (study, studies, studied), empty if `word` ends in none.
std::string StemBeforeY(const std::string& word) {
  if (EndsWith(word, "ies") || EndsWith(word, "ied")) return word.substr(0, word.size() - 3);
  if (EndsWith(word, "y")) return word.substr(0, word.size() - 1);
  return "";
}

void AddInflectionsInY(const std::string& word, WordList* words) {
  const std::string stem = StemBeforeY(word);
  if (stem.empty()) return;
  for (const char* ending : {"y", "ies", "ied"}) words->Add(stem + ending);
}

}  // namespace

std::vector<std::string> Inflections(const std::string& word) {
  WordList words(word);
  if (word.size() == kMinLetters - 1) words.Add(word + "s");
  if (word.size() < kMinLetters) return words.Take();
  const std::string_view ending = EndingOf(word);
  std::string stem = word.substr(0, word.size() - ending.size());
  // planned, planning: the last letter was doubled for the ending.
  const bool doubled =
      !ending.empty() && stem.size() > kMinStem && stem[stem.size() - 2] == stem.back();
  if (doubled) words.Add(stem.substr(0, stem.size() - 1));
  if (ending.empty() && EndsWith(word, "e")) stem.pop_back();
  words.AddInflectionsOf(stem);
  AddInflectionsInY(word, &words);
  return words.Take();
}

}  // namespace kestan::search
