// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <vector>

#include "tests/search/matching/operators/occurrences.h"

namespace kestan::search {
namespace {

using kestan_tests::At;
using kestan_tests::Places;
using kestan_tests::PlacesIn;

constexpr std::size_t kDocuments = 70;

Occurrences United(const std::vector<Found>& operands, Need need) {
  OccurrenceUnion all(kDocuments, need);
  for (const Found& operand : operands) all.Add(*operand);
  return all.Take();
}

TEST(UnionTest, DocumentsOfAnyOperandAreFoundInOrder) {
  const Occurrences found = United({At({{9, {1}}, {70, {1}}}), At({{1, {1}}})}, Need::kCodes);
  EXPECT_EQ(found.codes, (std::vector<Code>{1, 9, 70}));
}

TEST(UnionTest, EachDocumentOfASegmentCanBeFound) {
  Places all;
  Places even;
  for (Code code = 1; code <= kDocuments; ++code) {
    all[code] = {1};
    if (code % 2 == 0) even[code] = {1};
  }
  EXPECT_EQ(United({At(even), At(all), At(all)}, Need::kCodes).codes, At(all)->codes);
  EXPECT_EQ(United({At(even)}, Need::kCodes).codes, At(even)->codes);
}

TEST(UnionTest, CountsAreAddedUp) {
  const Occurrences found =
      United({At({{3, {1, 2}}, {4, {1}}}), At({{3, {5}}}), At({{3, {9}}})}, Need::kCounts);
  EXPECT_EQ(found.counts, (std::vector<std::uint32_t>{4, 1}));
}

TEST(UnionTest, PositionsAreBroughtTogetherInOrder) {
  const Occurrences found =
      United({At({{3, {1, 8}}, {5, {2}}}), At({{2, {6}}, {3, {4, 9}}})}, Need::kPositions);
  EXPECT_EQ(PlacesIn(found), (Places{{2, {6}}, {3, {1, 4, 8, 9}}, {5, {2}}}));
}

TEST(UnionTest, NothingIsTheUnionOfNothing) {
  EXPECT_EQ(United({}, Need::kPositions).size(), 0u);
  EXPECT_EQ(United({At({})}, Need::kCodes).size(), 0u);
}

}  // namespace
}  // namespace kestan::search
