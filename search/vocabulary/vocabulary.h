// The words of an index, and which of them are like a given one.
#ifndef KESTAN_SEARCH_VOCABULARY_VOCABULARY_H_
#define KESTAN_SEARCH_VOCABULARY_VOCABULARY_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// What Kestan::CommonWords takes as its upper bound to leave out no word. A negative one stands for
// the number of documents, and a word of one letter may have postings of many more that are gone.
constexpr double kAnyFrequency = 4294967295.0;

// Returns how many edits make `left` into `right`, if they are at most `limit`, else limit + 1. An
// edit adds, drops or replaces a letter, or swaps two neighbours; no letter is edited twice.
int EditsBetween(std::string_view left, std::string_view right, int limit);

// Returns in how many documents a word is.
using FrequencyOf = std::function<std::size_t(const std::string& word)>;

struct Similar {
  std::string word;
  int edits = 0;
  std::size_t documents = 0;  // 0 until somebody has counted
};

class Vocabulary {
 public:
  // Copies `lines`, one word each, in any order.
  explicit Vocabulary(std::string_view lines);

  // Finds the words that begin with `start`, in order of their bytes. The engine records a word
  // with capitals in small letters too: if `start` has no capital, only words without any are
  // found.
  std::vector<Similar> WithPrefix(std::string_view start) const;

  // Finds the words at most `edits` edits away from `word`, in order of their bytes; in the same
  // way without capitals if `word` has none.
  std::vector<Similar> WithinEdits(std::string_view word, int edits) const;

 private:
  const std::string lines_;
  std::vector<std::string_view> words_;  // in order of their bytes
};

// Cuts `candidates` to the `max` closest, and among those as close the most frequent. Counts
// documents only where that decides.
void KeepClosest(std::size_t max, const FrequencyOf& frequency_of,
                 std::vector<Similar>* candidates);

// Returns up to three words that may be meant by `word`, which no document has: the closest, among
// those as close the most frequent. They have at least two letters, no capitals, and are in some
// document. A word of up to four letters is taken to have one mistake at most, a longer one two,
// one of a letter or two none; capitals are no mistakes.
std::vector<std::string> Suggestions(const Vocabulary& vocabulary, const std::string& word,
                                     const FrequencyOf& frequency_of);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_VOCABULARY_H_
