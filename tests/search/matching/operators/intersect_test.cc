// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include "search/matching/operators/common.h"
#include "tests/search/matching/operators/occurrences.h"

namespace kestan::search {
namespace {

using kestan_tests::At;
using kestan_tests::Places;
using kestan_tests::PlacesIn;
using Codes = std::vector<Code>;

Found OfCodes(const Codes& codes) {
  Occurrences found;
  found.codes = codes;
  return std::make_shared<const Occurrences>(std::move(found));
}

Codes Common(const std::vector<Codes>& lists) {
  std::vector<Found> operands;
  for (const Codes& codes : lists) operands.push_back(OfCodes(codes));
  return Intersect(operands, Need::kCodes).codes;
}

TEST(IntersectTest, DocumentsOfAllOperandsAreFound) {
  EXPECT_EQ(Common({{1, 2, 3, 9}, {2, 9}, {1, 2, 8, 9}}), (Codes{2, 9}));
}

TEST(IntersectTest, EmptyOperandLeavesNothing) { EXPECT_EQ(Common({{1, 2}, {}}), Codes{}); }

TEST(IntersectTest, CountIsTheLeastOfThem) {
  const Occurrences found = Intersect({At({{5, {1, 2, 3}}}), At({{5, {7, 8}}})}, Need::kCounts);
  EXPECT_EQ(found.counts, std::vector<std::uint32_t>{2});
  EXPECT_TRUE(found.starts.empty());
}

TEST(IntersectTest, PositionsAreThoseOfAll) {
  const Occurrences found =
      Intersect({At({{4, {1}}, {5, {3, 9}}}), At({{5, {7}}, {6, {1}}})}, Need::kPositions);
  EXPECT_EQ(PlacesIn(found), (Places{{5, {3, 7, 9}}}));
  EXPECT_EQ(found.counts, std::vector<std::uint32_t>{1});
}

RC_GTEST_PROP(IntersectTest, ListsOfAnyLengthsHaveTheirCodesInCommon, ()) {
  const auto code = rc::gen::inRange<Code>(1, 400);
  const auto many = *rc::gen::unique<Codes>(200, code);
  const auto few = *rc::gen::unique<Codes>(*rc::gen::inRange<std::size_t>(0, 12), code);
  const std::set<Code> left(many.begin(), many.end());
  const std::set<Code> right(few.begin(), few.end());
  Codes expected;
  std::set_intersection(left.begin(), left.end(), right.begin(), right.end(),
                        std::back_inserter(expected));
  const Codes one(left.begin(), left.end());
  const Codes other(right.begin(), right.end());
  RC_ASSERT(Common({one, other}) == expected);
  RC_ASSERT(Common({other, one}) == expected);
}

TEST(SeekCodeTest, FirstCodeThatIsNotBeforeIsFound) {
  const Codes codes = {2, 4, 6, 8, 10, 12, 65535};
  EXPECT_EQ(SeekCode(codes, 0, 1), 0u);
  EXPECT_EQ(SeekCode(codes, 0, 2), 0u);
  EXPECT_EQ(SeekCode(codes, 0, 9), 4u);
  EXPECT_EQ(SeekCode(codes, 3, 65535), 6u);
  EXPECT_EQ(SeekCode({2, 4}, 0, 5), 2u);
  EXPECT_EQ(SeekCode({2, 4}, 2, 5), 2u);
}

}  // namespace
}  // namespace kestan::search
