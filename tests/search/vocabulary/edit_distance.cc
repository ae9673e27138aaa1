// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/search/vocabulary/edit_distance.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kestan::search {
namespace {

// The table of edits, row by row. Row i holds the distances from the first i letters of one word to
// each beginning of the other.
class EditTable {
 public:
  EditTable(std::string_view left, std::string_view right)
      : left_(left), right_(right), row_(right.size() + 1) {
    for (std::size_t j = 0; j < row_.size(); ++j) row_[j] = static_cast<int>(j);
    previous_ = row_;
  }

  // Goes on to row `i`.
  //   Returns  the least distance in it.
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

}  // namespace

int BoundedEditDistance(std::string_view left, std::string_view right, int limit) {
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

}  // namespace kestan::search
