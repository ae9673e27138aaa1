// SPDX-License-Identifier: GPL-3.0-or-later
// How far many words in order are from one.
#ifndef KESTAN_SEARCH_VOCABULARY_SORTED_EDIT_DISTANCE_H_
#define KESTAN_SEARCH_VOCABULARY_SORTED_EDIT_DISTANCE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// The edit distances (edit_distance.h) of many words to one. What a word has in common with the one
// before, its beginning, is not compared again; so words in order of their bytes take least time.
// `Letter` is what words consist of.
template <typename Letter>
class SortedEditDistance {
 public:
  using Word = std::basic_string_view<Letter>;

  // Copies `word`. `limit` is 0 or more.
  SortedEditDistance(Word word, int limit);

  // Returns the distance to `other` if it is at most the limit, else limit + 1.
  int To(Word other);

 private:
  bool IsTooFar(std::size_t row) const;
  void FillRow(std::size_t row);
  int EditsAt(std::size_t row, std::size_t column) const;
  int At(std::size_t row, std::size_t column) const { return table_[row * columns_ + column]; }

  const std::basic_string<Letter> word_;
  const int limit_;
  const std::size_t columns_;        // one more than the letters of the word
  std::basic_string<Letter> other_;  // the beginning that the table is filled for
  std::size_t rows_ = 1;             // one more than the letters of that
  std::vector<int> table_;           // rows_ rows of columns_
  std::vector<int> least_;           // the least distance in each row
};

extern template class SortedEditDistance<char>;
extern template class SortedEditDistance<char32_t>;

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_VOCABULARY_SORTED_EDIT_DISTANCE_H_
