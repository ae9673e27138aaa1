#include "search/vocabulary/vocabulary.h"

#include <algorithm>
#include <utility>

#include "search/text/letters.h"
#include "search/vocabulary/edit_distance.h"

namespace kestan::search {
namespace {

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

}  // namespace

Vocabulary::Vocabulary(std::vector<std::string> words)
    : storage_(std::move(words)), words_(storage_.begin(), storage_.end()) {
  std::sort(words_.begin(), words_.end());
}

std::vector<FuzzyMatch> Vocabulary::WithPrefix(std::string_view prefix) const {
  const bool exact = HasCapital(prefix);
  std::vector<FuzzyMatch> found;
  auto word = std::lower_bound(words_.begin(), words_.end(), prefix);
  for (; word != words_.end() && StartsWith(*word, prefix); ++word) {
    if (exact || !HasCapital(*word)) found.push_back({std::string(*word), 0, 0});
  }
  return found;
}

std::vector<FuzzyMatch> Vocabulary::WithinEdits(std::string_view word, int edits) const {
  const bool exact = HasCapital(word);
  std::vector<FuzzyMatch> found;
  for (const std::string_view candidate : words_) {
    if (!exact && HasCapital(candidate)) continue;
    const int needed = BoundedEditDistance(word, candidate, edits);
    if (needed <= edits) found.push_back({std::string(candidate), needed, 0});
  }
  return found;
}

}  // namespace kestan::search
