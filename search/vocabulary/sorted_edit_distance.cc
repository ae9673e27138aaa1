// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/sorted_edit_distance.h"

#include <algorithm>

namespace kestan::search {

template <typename Letter>
SortedEditDistance<Letter>::SortedEditDistance(Word word, int limit)
    : word_(word), limit_(limit), columns_(word.size() + 1), table_(columns_), least_(1) {
  for (std::size_t column = 0; column < columns_; ++column) {
    table_[column] = static_cast<int>(column);
  }
}

template <typename Letter>
int SortedEditDistance<Letter>::To(Word other) {
  const auto common = static_cast<std::size_t>(
      std::mismatch(other_.begin(), other_.end(), other.begin(), other.end()).first -
      other_.begin());
  rows_ = std::min(rows_, common + 1);
  other_.resize(rows_ - 1);
  while (!IsTooFar(rows_ - 1)) {
    if (other_.size() == other.size()) return std::min(At(rows_ - 1, columns_ - 1), limit_ + 1);
    other_ += other[other_.size()];
    FillRow(rows_++);
  }
  return limit_ + 1;
}

// Returns whether no word is near that begins like the one that reaches `row`. A swap of neighbours
// reaches back two rows.
template <typename Letter>
bool SortedEditDistance<Letter>::IsTooFar(std::size_t row) const {
  return row > 0 && least_[row] > limit_ && least_[row - 1] > limit_;
}

template <typename Letter>
void SortedEditDistance<Letter>::FillRow(std::size_t row) {
  if (table_.size() < (row + 1) * columns_) {
    table_.resize((row + 1) * columns_);
    least_.resize(row + 1);
  }
  int* const cells = &table_[row * columns_];
  cells[0] = least_[row] = static_cast<int>(row);
  for (std::size_t column = 1; column < columns_; ++column) {
    cells[column] = EditsAt(row, column);
    least_[row] = std::min(least_[row], cells[column]);
  }
}

template <typename Letter>
int SortedEditDistance<Letter>::EditsAt(std::size_t row, std::size_t column) const {
  const Letter letter = other_[row - 1];
  const int replaced = At(row - 1, column - 1) + (letter == word_[column - 1] ? 0 : 1);
  const int edits = std::min({replaced, At(row - 1, column) + 1, At(row, column - 1) + 1});
  const bool swapped =
      row > 1 && column > 1 && letter == word_[column - 2] && other_[row - 2] == word_[column - 1];
  return swapped ? std::min(edits, At(row - 2, column - 2) + 1) : edits;
}

template class SortedEditDistance<char>;
template class SortedEditDistance<char32_t>;

}  // namespace kestan::search
