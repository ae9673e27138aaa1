#include "search/vocabulary/vocabulary.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <tuple>

namespace kestan::search {
namespace {

constexpr std::size_t kMaxSuggestions = 3;
constexpr std::size_t kCountedSuggestions = 50;  // so many are asked for their frequency

bool IsCapital(char letter) { return letter >= 'A' && letter <= 'Z'; }

bool HasCapital(std::string_view word) { return std::any_of(word.begin(), word.end(), IsCapital); }

std::string Folded(std::string_view word) {
  std::string folded(word);
  for (char& letter : folded) {
    if (IsCapital(letter)) letter = static_cast<char>(letter | 0x20);
  }
  return folded;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// A table of edits, row by row: row i has the edits from the first i letters of one word to the
// beginnings of the other.
class EditTable {
 public:
  EditTable(std::string_view left, std::string_view right)
      : left_(left), right_(right), row_(right.size() + 1) {
    for (std::size_t j = 0; j < row_.size(); ++j) row_[j] = static_cast<int>(j);
    previous_ = row_;
  }

  // Goes on to row `i`.
  //   Returns  the least number in it.
  int Advance(std::size_t i) {
    before_previous_.swap(previous_);
    previous_.swap(row_);
    row_.resize(previous_.size());
    row_[0] = static_cast<int>(i);
    int least = row_[0];
    for (std::size_t j = 1; j < row_.size(); ++j) {
      row_[j] = EditsAt(i, j);
      least = std::min(least, row_[j]);
    }
    return least;
  }

  int last() const { return row_.back(); }

 private:
  int EditsAt(std::size_t i, std::size_t j) const {
    const bool same = left_[i - 1] == right_[j - 1];
    const int replaced = previous_[j - 1] + (same ? 0 : 1);
    int edits = std::min({replaced, previous_[j] + 1, row_[j - 1] + 1});
    const bool swapped =
        i > 1 && j > 1 && left_[i - 1] == right_[j - 2] && left_[i - 2] == right_[j - 1];
    if (swapped) edits = std::min(edits, before_previous_[j - 2] + 1);
    return edits;
  }

  const std::string_view left_;
  const std::string_view right_;
  std::vector<int> before_previous_;
  std::vector<int> previous_;
  std::vector<int> row_;
};

// Asks for the frequency of each.
void CountDocuments(const FrequencyOf& frequency_of, std::vector<Similar>* candidates) {
  for (Similar& candidate : *candidates) candidate.documents = frequency_of(candidate.word);
}

bool IsBetter(const Similar& left, const Similar& right) {
  return std::tie(left.edits, right.documents, left.word) <
         std::tie(right.edits, left.documents, right.word);
}

// How many mistakes a word of so many letters may hold.
int MaxMistakes(std::size_t letters) {
  if (letters <= 2) return 0;
  return letters <= 4 ? 1 : 2;
}

}  // namespace

int EditsBetween(std::string_view left, std::string_view right, int limit) {
  const std::size_t longer = std::max(left.size(), right.size());
  const std::size_t difference = longer - std::min(left.size(), right.size());
  if (difference > static_cast<std::size_t>(limit)) return limit + 1;
  EditTable table(left, right);
  int least_before = 0;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    const int least = table.Advance(i);
    // A swap reaches back two rows.
    if (least > limit && least_before > limit) return limit + 1;
    least_before = least;
  }
  return std::min(table.last(), limit + 1);
}

Vocabulary::Vocabulary(std::string_view lines) : lines_(lines) {
  for (std::string_view rest = lines_; !rest.empty();) {
    const std::string_view word = rest.substr(0, rest.find('\n'));
    if (!word.empty()) words_.push_back(word);
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  }
  std::sort(words_.begin(), words_.end());
}

std::vector<Similar> Vocabulary::WithPrefix(std::string_view start) const {
  const bool exact = HasCapital(start);
  std::vector<Similar> found;
  auto word = std::lower_bound(words_.begin(), words_.end(), start);
  for (; word != words_.end() && StartsWith(*word, start); ++word) {
    if (exact || !HasCapital(*word)) found.push_back({std::string(*word), 0, 0});
  }
  return found;
}

std::vector<Similar> Vocabulary::WithinEdits(std::string_view word, int edits) const {
  const bool exact = HasCapital(word);
  std::vector<Similar> found;
  for (const std::string_view candidate : words_) {
    if (!exact && HasCapital(candidate)) continue;
    const int needed = EditsBetween(word, candidate, edits);
    if (needed <= edits) found.push_back({std::string(candidate), needed, 0});
  }
  return found;
}

void KeepClosest(std::size_t max, const FrequencyOf& frequency_of,
                 std::vector<Similar>* candidates) {
  if (candidates->size() <= max) return;
  CountDocuments(frequency_of, candidates);
  std::sort(candidates->begin(), candidates->end(), IsBetter);
  candidates->resize(max);
}

std::vector<std::string> Suggestions(const Vocabulary& vocabulary, const std::string& word,
                                     const FrequencyOf& frequency_of) {
  const std::string folded = Folded(word);
  std::vector<Similar> candidates = vocabulary.WithinEdits(folded, MaxMistakes(folded.size()));
  // Stable: words as close stay in order of their bytes.
  std::stable_sort(
      candidates.begin(), candidates.end(),
      [](const Similar& left, const Similar& right) { return left.edits < right.edits; });
  if (candidates.size() > kCountedSuggestions) candidates.resize(kCountedSuggestions);
  CountDocuments(frequency_of, &candidates);
  std::sort(candidates.begin(), candidates.end(), IsBetter);
  std::vector<std::string> words;
  for (const Similar& candidate : candidates) {
    if (candidate.documents > 0 && candidate.word.size() >= 2) words.push_back(candidate.word);
    if (words.size() == kMaxSuggestions) break;
  }
  return words;
}

}  // namespace kestan::search
