// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <vector>

#include "tests/search/matching/operators/occurrences.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::At;
using kestan_tests::Plain;
using kestan_tests::PlainSegments;
using Codes = std::vector<Code>;

TEST(SubtractTest, LivingDocumentsWithoutTheOperandAreFoundAnywhere) {
  PlainSegments segments;
  auto documents = std::vector{Plain("a", "x"), Plain("b", "x"), Plain("c", "x"), Plain("d", "x")};
  documents[2].is_removed = true;
  const auto segment = segments.Add(documents);
  const Found operand = At({{1, {1}}});
  EXPECT_EQ(Subtract(*segment, *operand, Need::kCodes).codes, (Codes{2, 4}));
  EXPECT_EQ(Subtract(*segment, *operand, Need::kCounts).counts, (std::vector<std::uint32_t>{1, 1}));
  EXPECT_EQ(kestan_tests::PlacesIn(Subtract(*segment, *operand, Need::kPositions)),
            (kestan_tests::Places{{2, {0}}, {4, {0}}}));
  EXPECT_EQ(Subtract(*segment, *At({}), Need::kCodes).codes, (Codes{1, 2, 4}));
}

Codes Excluding(Codes codes, const Codes& excluded) {
  Occurrences operand;
  operand.codes = excluded;
  Exclude(operand, &codes);
  return codes;
}

TEST(ExcludeTest, LeavesOutWhatIsExcluded) {
  EXPECT_EQ(Excluding({1, 2, 5, 9}, {2, 3, 9}), (Codes{1, 5}));
  EXPECT_EQ(Excluding({1, 2}, {}), (Codes{1, 2}));
  EXPECT_EQ(Excluding({1, 2}, {1, 2}), Codes());
  EXPECT_EQ(Excluding({}, {7}), Codes());
  EXPECT_EQ(Excluding({65535}, {1, 65535}), Codes());
}

// Lists that are about as long as each other, and such that one is searched and not read.
TEST(ExcludeTest, LeavesTheDifferenceOfListsOfAnyLength) {
  std::mt19937 random(14);
  for (const unsigned keep : {1U, 3U, 100U, 3000U}) {
    for (const unsigned leave_out : {1U, 3U, 100U, 3000U}) {
      Codes codes;
      Codes excluded;
      for (unsigned code = 1; code <= 20'000; ++code) {
        if (random() % keep == 0) codes.push_back(static_cast<Code>(code));
        if (random() % leave_out == 0) excluded.push_back(static_cast<Code>(code));
      }
      Codes expected;
      std::set_difference(codes.begin(), codes.end(), excluded.begin(), excluded.end(),
                          std::back_inserter(expected));
      EXPECT_EQ(Excluding(codes, excluded), expected) << keep << " " << leave_out;
    }
  }
}

}  // namespace
}  // namespace kestan::search
