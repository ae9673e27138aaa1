// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/search/vocabulary/edit_distance.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kestan::search {
namespace {

TEST(EditDistanceTest, CountsEachKindOfEdit) {
  EXPECT_EQ(BoundedEditDistance("layer", "layer", 2), 0);
  EXPECT_EQ(BoundedEditDistance("layer", "player", 2), 1);
  EXPECT_EQ(BoundedEditDistance("layer", "laye", 2), 1);
  EXPECT_EQ(BoundedEditDistance("layer", "later", 2), 1);
  EXPECT_EQ(BoundedEditDistance("layer", "alyer", 2), 1);
  EXPECT_EQ(BoundedEditDistance("layer", "lyare", 2), 2);
  EXPECT_EQ(BoundedEditDistance("", "ab", 2), 2);
}

TEST(EditDistanceTest, StopsBeyondTheLimit) {
  EXPECT_EQ(BoundedEditDistance("layer", "wings", 2), 3);
  EXPECT_EQ(BoundedEditDistance("layer", "la", 2), 3);
  EXPECT_EQ(BoundedEditDistance("layer", "la", 3), 3);
  EXPECT_EQ(BoundedEditDistance("a", "b", 0), 1);
}

// The textbook's table, whole.
int SlowEdits(const std::string& left, const std::string& right) {
  std::vector<std::vector<int>> table(left.size() + 1, std::vector<int>(right.size() + 1));
  for (std::size_t i = 0; i <= left.size(); ++i) {
    for (std::size_t j = 0; j <= right.size(); ++j) {
      if (i == 0 || j == 0) {
        table[i][j] = static_cast<int>(i + j);
        continue;
      }
      const int replaced = table[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      table[i][j] = std::min({replaced, table[i - 1][j] + 1, table[i][j - 1] + 1});
      if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
        table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
      }
    }
  }
  return table[left.size()][right.size()];
}

RC_GTEST_PROP(EditDistanceTest, AgreesWithTheWholeTable, ()) {
  const auto word = rc::gen::container<std::string>(rc::gen::element('a', 'b', 'c'));
  const std::string left = *word;
  const std::string right = *word;
  for (int limit = 0; limit < 4; ++limit) {
    RC_ASSERT(BoundedEditDistance(left, right, limit) ==
              std::min(SlowEdits(left, right), limit + 1));
  }
}

}  // namespace
}  // namespace kestan::search
