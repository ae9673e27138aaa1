// SPDX-License-Identifier: GPL-3.0-or-later
// A result set by itself: order, documents with one code, and its view.
#include <kestan/query/result_set.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace kestan_tests {
namespace {

using kestan::ResultSet;

// Returns a set as "CODE/SCORE at POSITION..." for each document.
std::string ToString(const ResultSet& set) {
  std::string text;
  for (const kestan::Match match : set.View()) {
    text += std::to_string(match.code) + "/" + std::to_string(match.score) + " at";
    for (const kestan::Position position : match.positions) {
      text += " " + std::to_string(position);
    }
    text += "\n";
  }
  return text;
}

void Add(unsigned code, kestan::Position position, ResultSet* set) {
  set->Add(static_cast<kestan::Code>(code), 1, {&position, 1});
}

TEST(ResultSetTest, ViewOfAnEmptySetIsEmpty) { EXPECT_TRUE(ResultSet().View().empty()); }

TEST(ResultSetTest, SortingPutsCodesInOrder) {
  ResultSet set;
  for (const unsigned code : {7u, 2u, 65535u, 3u}) Add(code, 1, &set);
  set.Sort();
  EXPECT_EQ(ToString(set), "2/1 at 1\n3/1 at 1\n7/1 at 1\n65535/1 at 1\n");
}

TEST(ResultSetTest, OfOneCodeTwiceTheFirstStays) {
  ResultSet set;
  Add(5, 10, &set);
  Add(4, 20, &set);
  Add(5, 30, &set);
  set.Sort();
  EXPECT_EQ(ToString(set), "4/1 at 20\n5/1 at 10\n");
}

TEST(ResultSetTest, SameCodeTwiceInARowIsOutOfOrder) {
  ResultSet set;
  Add(5, 10, &set);
  Add(5, 30, &set);
  set.Sort();
  EXPECT_EQ(ToString(set), "5/1 at 10\n");
}

TEST(ResultSetTest, AllButLeavesOutWhatIsExcluded) {
  kestan::CodeSet excluded;
  excluded.set(2);
  excluded.set(9);
  ResultSet set;
  set.AddAllBut(excluded, 4);
  EXPECT_EQ(ToString(set), "1/0 at\n3/0 at\n4/0 at\n");
}

TEST(ResultSetTest, ViewLeavesOutTheOnePositionThatStandsForNone) {
  ResultSet set;
  set.AddUnplaced(3, 1);
  EXPECT_EQ(ToString(set), "3/1 at\n");
  const kestan::Positions kept = set.PositionsOf(set.documents()[0]);
  ASSERT_EQ(kept.count, 1u);
  EXPECT_EQ(*kept.first, 0);
}

TEST(ResultSetTest, ViewShowsA0AmongOtherPositions) {
  const std::array<kestan::Position, 2> positions{0, 7};
  ResultSet set;
  set.Add(3, 2, {positions.data(), positions.size()});
  EXPECT_EQ(ToString(set), "3/2 at 0 7\n");
}

TEST(ResultSetTest, AllButUpTo65535EndsThere) {
  ResultSet set;
  set.AddAllBut({}, 65535);
  ASSERT_EQ(set.View().size(), 65535u);
  EXPECT_EQ(set.View()[65534].code, 65535);
}

TEST(ResultSetTest, TrimmingKeepsTheDocuments) {
  ResultSet set;
  set.Reserve(10000, 10);
  Add(5, 10, &set);
  set.Trim();
  EXPECT_LT(set.documents().capacity(), 10000u);
  EXPECT_EQ(ToString(set), "5/1 at 10\n");
}

}  // namespace
}  // namespace kestan_tests
