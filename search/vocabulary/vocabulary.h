// The words of an index, in order of their bytes.
#ifndef KESTAN_SEARCH_VOCABULARY_VOCABULARY_H_
#define KESTAN_SEARCH_VOCABULARY_VOCABULARY_H_

#include <string>
#include <string_view>
#include <vector>

#include "search/vocabulary/fuzzy_match.h"

namespace kestan::search {

class Vocabulary {
 public:
  // Takes `words`, in any order.
  explicit Vocabulary(std::vector<std::string> words);
  Vocabulary(const Vocabulary&) = delete;
  Vocabulary& operator=(const Vocabulary&) = delete;

  // Finds the words that begin with `prefix`, in order of their bytes. The engine indexes a word
  // with capitals in lower case too: if `prefix` has no capital, only words without any are found.
  std::vector<FuzzyMatch> WithPrefix(std::string_view prefix) const;

  // Finds the words at most `edits` edits away from `word`, in order of their bytes. If `word` has
  // no capital, only words without any are found.
  std::vector<FuzzyMatch> WithinEdits(std::string_view word, int edits) const;

 private:
  const std::vector<std::string> storage_;
  std::vector<std::string_view> words_;  // in order of their bytes: views are cheaper to sort
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_VOCABULARY_H_
