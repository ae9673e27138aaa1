#include "search/vocabulary/word_forms.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace kestan::search {
namespace {

constexpr std::size_t kMinLetters = 4;  // of a word that is taken apart
constexpr std::size_t kMinStem = 3;

bool EndsWith(std::string_view word, std::string_view end) {
  return word.size() >= end.size() && word.substr(word.size() - end.size()) == end;
}

// Returns the ending of a form, empty if `word` seems to be in its first form. The s of glass,
// focus and analysis is no ending.
std::string_view EndingOf(std::string_view word) {
  if (EndsWith(word, "ss") || EndsWith(word, "us") || EndsWith(word, "is")) return "";
  for (const std::string_view ending : {"ing", "ed", "es", "s"}) {
    if (EndsWith(word, ending) && word.size() - ending.size() >= kMinStem) return ending;
  }
  return "";
}

// Each once, in the order in which they came.
class Forms {
 public:
  explicit Forms(const std::string& word) : forms_{word} {}

  void Add(const std::string& form) {
    if (form.size() < kMinStem) return;
    if (std::find(forms_.begin(), forms_.end(), form) == forms_.end()) forms_.push_back(form);
  }

  void AddAllOf(const std::string& stem) {
    for (const char* ending : {"", "s", "es", "ed", "ing", "e"}) Add(stem + ending);
  }

  std::vector<std::string> Take() { return std::move(forms_); }

 private:
  std::vector<std::string> forms_;
};

// What lies before y, ies and ied (study, studies, studied).
std::string StemInY(const std::string& word) {
  if (EndsWith(word, "ies") || EndsWith(word, "ied")) return word.substr(0, word.size() - 3);
  if (EndsWith(word, "y")) return word.substr(0, word.size() - 1);
  return "";
}

void AddFormsInY(const std::string& word, Forms* forms) {
  const std::string stem = StemInY(word);
  if (stem.empty()) return;
  for (const char* ending : {"y", "ies", "ied"}) forms->Add(stem + ending);
}

}  // namespace

std::vector<std::string> FormsOf(const std::string& word) {
  Forms forms(word);
  if (word.size() == kMinLetters - 1) forms.Add(word + "s");
  if (word.size() < kMinLetters) return forms.Take();
  const std::string_view ending = EndingOf(word);
  std::string stem = word.substr(0, word.size() - ending.size());
  // planned, planning: the last letter was doubled for the ending.
  const bool doubled =
      !ending.empty() && stem.size() > kMinStem && stem[stem.size() - 2] == stem.back();
  if (doubled) forms.Add(stem.substr(0, stem.size() - 1));
  if (ending.empty() && EndsWith(word, "e")) stem.pop_back();
  forms.AddAllOf(stem);
  AddFormsInY(word, &forms);
  return forms.Take();
}

}  // namespace kestan::search
