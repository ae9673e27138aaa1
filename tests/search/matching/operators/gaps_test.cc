// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/matching/operators/gaps.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestan::search {
namespace {

using List = std::vector<Position>;

bool AreFewOf(const List& positions) { return AreFew({positions.data(), positions.size()}); }

TEST(GapsTest, GapsAreTheWordsBetween) {
  const List positions = {1, 2, 9, 10, 11, 12, 100, 32767};
  Gaps gaps = NoGaps();
  NarrowGaps(positions.data(), 10, &gaps);
  EXPECT_EQ(gaps, (Gaps{8, 7, 0, kNoGap, 0, 1, 89, 32756}));
}

TEST(GapsTest, GapsOnlyGetSmaller) {
  const List positions(kLanes, 10);
  Gaps gaps = NoGaps();
  for (const Position other : List{15, 12, 20, 10, 7}) NarrowGaps(positions.data(), other, &gaps);
  EXPECT_EQ(gaps.front(), 1);
  EXPECT_EQ(gaps.back(), 1);
}

TEST(GapsTest, LargestDifferenceIsAGap) {
  const List positions(kLanes, 32767);
  Gaps gaps = NoGaps();
  NarrowGaps(positions.data(), 1, &gaps);
  EXPECT_EQ(gaps.front(), 32765);
}

TEST(GapsTest, PositionsAreFewWhereTheyAreKnownAndEarly) {
  EXPECT_TRUE(AreFewOf({1}));
  EXPECT_TRUE(AreFewOf(List(kFewPositions, 5)));
  EXPECT_FALSE(AreFewOf(List(kFewPositions + 1, 5)));
  EXPECT_TRUE(AreFewOf({1, 32767}));
  EXPECT_FALSE(AreFewOf({1, 32768}));
  EXPECT_FALSE(AreFewOf({0, 9}));
  EXPECT_FALSE(AreFewOf({}));
}

}  // namespace
}  // namespace kestan::search
