// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/fuzzy_match.h"

#include <gtest/gtest.h>

namespace kestan::search {
namespace {

TEST(FuzzyMatchTest, FewerEditsThenMoreDocumentsThenLesserBytesAreCloser) {
  EXPECT_TRUE(IsCloser({"b", 1, 1}, {"a", 2, 9}));
  EXPECT_TRUE(IsCloser({"b", 1, 2}, {"a", 1, 1}));
  EXPECT_TRUE(IsCloser({"a", 1, 1}, {"b", 1, 1}));
  EXPECT_FALSE(IsCloser({"a", 1, 1}, {"a", 1, 1}));
}

}  // namespace
}  // namespace kestan::search
