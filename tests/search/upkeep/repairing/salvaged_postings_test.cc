// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/salvaged_postings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::string Units(const std::vector<unsigned>& units) {
  std::string bytes;
  for (const unsigned unit : units) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// Reads a record of documents up to code 9, and says of it: whether it is sound, and each posting
// as "code:positions", with a question mark if it is doubted.
std::string Read(const std::string& record, bool with_positions = true) {
  SalvagedPostings postings;
  std::string said = postings.Read(record, with_positions, 9) ? "sound" : "damaged";
  for (const SalvagedPosting& posting : postings) {
    said += " " + std::to_string(posting.code);
    std::string separator = ":";
    for (const Position position : postings.PositionsOf(posting)) {
      said += separator + std::to_string(position);
      separator = ",";
    }
    if (posting.is_doubted) said += "?";
  }
  return said;
}

TEST(SalvagedPostingsTest, ASoundRecord) {
  EXPECT_EQ(Read(Units({1, 2, 3, 4, 9, 1, 65535})), "sound 1:3,4 9:65535");
  EXPECT_EQ(Read(Units({1, 5, 9}), false), "sound 1 5 9");
}

TEST(SalvagedPostingsTest, AnEmptyRecordIsNotSound) {
  EXPECT_EQ(Read(""), "damaged");
  EXPECT_EQ(Read("", false), "damaged");
}

TEST(SalvagedPostingsTest, ARecordIsReadUpToTheFirstPostingThatIsNotWhole) {
  EXPECT_EQ(Read(Units({1, 1, 3, 2, 9, 4})), "damaged 1:3");
  EXPECT_EQ(Read(Units({1, 1, 3, 2, 0, 4, 1, 1})), "damaged 1:3");
  EXPECT_EQ(Read(Units({1, 1, 3, 2})), "damaged 1:3");
}

TEST(SalvagedPostingsTest, AnOddByteIsDamage) {
  EXPECT_EQ(Read(Units({1, 1, 3}) + "x"), "damaged 1:3");
  EXPECT_EQ(Read(Units({1}) + "x", false), "damaged 1");
}

TEST(SalvagedPostingsTest, CodesOfNoDocumentAreLeftOut) {
  EXPECT_EQ(Read(Units({0, 1, 3, 2, 1, 4, 10, 1, 1})), "damaged 2:4");
  EXPECT_EQ(Read(Units({0, 2, 10}), false), "damaged 2");
}

TEST(SalvagedPostingsTest, PositionsOfZeroAreLeftOut) {
  EXPECT_EQ(Read(Units({1, 3, 1, 0, 5})), "damaged 1:1,5?");
}

TEST(SalvagedPostingsTest, PositionsOutOfOrderAreDoubtedButMayBeThoseOfALongText) {
  EXPECT_EQ(Read(Units({1, 2, 5, 4})), "sound 1:5,4?");
  EXPECT_EQ(Read(Units({1, 2, 5, 5})), "sound 1:5,5?");
}

TEST(SalvagedPostingsTest, TheFewestCodesThatBreakTheOrderAreDoubted) {
  EXPECT_EQ(Read(Units({1, 1, 1, 9, 1, 2, 3, 1, 3, 4, 1, 4})), "damaged 1:1 3:3 4:4 9:2?");
  EXPECT_EQ(Read(Units({3, 1, 1, 4, 1, 2, 1, 1, 3, 6, 1, 4})), "damaged 1:3? 3:1 4:2 6:4");
  EXPECT_EQ(Read(Units({2, 1, 1, 2, 1, 3})).size(), std::string("damaged 2:1 2:3?").size());
}

TEST(SalvagedPostingsTest, WithoutPositionsTheyAreLeftOut) {
  EXPECT_EQ(Read(Units({1, 9, 3, 4}), false), "damaged 1 3 4");
  EXPECT_EQ(Read(Units({2, 2, 3}), false), "damaged 2 3");
}

TEST(SalvagedPostingsTest, WhatLooksLikePostingsHasTheirShapeAndANul) {
  EXPECT_TRUE(LooksLikePostings(Units({7, 1, 5, 300, 2, 9, 8}), true));
  EXPECT_TRUE(LooksLikePostings(Units({7, 5, 5}), false));
  EXPECT_FALSE(LooksLikePostings("", true));
  EXPECT_FALSE(LooksLikePostings("some text!", false));
  EXPECT_FALSE(LooksLikePostings(Units({7, 2, 5}), true));
  EXPECT_FALSE(LooksLikePostings(Units({7, 1, 0}), true));
  EXPECT_FALSE(LooksLikePostings(Units({0, 1, 5}), true));
  EXPECT_FALSE(LooksLikePostings(Units({7, 1, 5}) + "x", true));
}

}  // namespace
}  // namespace kestan::search
