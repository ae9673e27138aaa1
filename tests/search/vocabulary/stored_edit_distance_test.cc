// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/stored_edit_distance.h"

#include <gtest/gtest.h>

#include <string>

#include "search/text/analyzer/word_encoding.h"

namespace kestan::search {
namespace {

int Distance(const std::string& from, const std::string& to, int limit = 2) {
  return StoredEditDistance(StoredCharacters(from), limit).To(StoredCharacters(to));
}

TEST(StoredEditDistanceTest, LettersAreCountedAndNotTheirBytes) {
  EXPECT_EQ(Distance("москва", "москва"), 0);
  EXPECT_EQ(Distance("москва", "масква"), 1);
  EXPECT_EQ(Distance("москва", "мсква"), 1);
  EXPECT_EQ(Distance("москва", "омсква"), 1);
  EXPECT_EQ(Distance("北京", "北東"), 1);
  EXPECT_EQ(Distance("москва", "киев"), 3);
}

TEST(StoredEditDistanceTest, AsciiAndOtherLettersMayBeMixed) {
  EXPECT_EQ(Distance("utf8я", "utf8"), 1);
  EXPECT_EQ(Distance("utf8", "utf8я"), 1);
  EXPECT_EQ(Distance("flow", "flo"), 1);
}

// Words of both kinds in turn: each is compared with those before it of its kind.
TEST(StoredEditDistanceTest, WordsMayComeInAnyOrder) {
  StoredEditDistance distance("flow", 1);
  EXPECT_EQ(distance.To("flow"), 0);
  EXPECT_EQ(distance.To(StoredCharacters("flоw")), 1);
  EXPECT_EQ(distance.To("flown"), 1);
  EXPECT_EQ(distance.To(StoredCharacters("поток")), 2);
  EXPECT_EQ(distance.To("low"), 1);
}

}  // namespace
}  // namespace kestan::search
