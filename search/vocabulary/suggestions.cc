#include "search/vocabulary/suggestions.h"

#include <algorithm>

#include "search/text/letters.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMaxSuggestions = 3;
constexpr std::size_t kMaxCounted = 50;  // words whose document frequency is looked up
constexpr std::size_t kMinLetters = 2;

// Returns how many mistakes a word of so many letters may have.
int MaxMistakes(std::size_t letters) {
  if (letters <= 2) return 0;
  return letters <= 4 ? 1 : 2;
}

}  // namespace

std::vector<std::string> Suggestions(const Vocabulary& vocabulary, const std::string& word,
                                     const DocumentFrequency& document_frequency) {
  std::vector<FuzzyMatch> matches =
      vocabulary.WithinEdits(LowerCase(word), MaxMistakes(word.size()));
  // Stable: equally close words stay in order of their bytes.
  std::stable_sort(
      matches.begin(), matches.end(),
      [](const FuzzyMatch& left, const FuzzyMatch& right) { return left.edits < right.edits; });
  if (matches.size() > kMaxCounted) matches.resize(kMaxCounted);
  CountDocuments(document_frequency, &matches);
  std::sort(matches.begin(), matches.end(), IsCloser);
  std::vector<std::string> words;
  for (const FuzzyMatch& match : matches) {
    if (match.documents > 0 && match.word.size() >= kMinLetters) words.push_back(match.word);
    if (words.size() == kMaxSuggestions) break;
  }
  return words;
}

}  // namespace kestan::search
