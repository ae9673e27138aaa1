// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan::ShrinkIndex of kestan/indexing/shrink.cc, in an index whose records are damaged.
#include <algorithm>

#include "tests/indexing/planting.h"

namespace kestan_tests {
namespace {

class ShrinkDamagedTest : public IndexTest {
 protected:
  // Shrinks an index where the code 2 is removed, and returns the record of "apple".
  std::string Apple(const std::string& postings, const std::string& options = kPositions) {
    return Shrunk({{"apple", postings}, {"g-deleted", Units({2})}, {"g-opts", options}})
        .at("apple");
  }

  Records Shrunk(const Records& records) {
    PlantAndReopen(records);
    EXPECT_EQ(engine_.ShrinkIndex(), 0);
    return Stored();
  }
};

TEST_F(ShrinkDamagedTest, CountPastTheEndTakesTheUnitsThatAreLeft) {
  EXPECT_EQ(Apple(EncodedPosting(2, {9}) + Units({1, 5, 10})), Units({1, 5, 10}));
  EXPECT_EQ(Apple(EncodedPosting(1, {9}) + Units({2, 5, 10})), EncodedPosting(1, {9}));
  EXPECT_EQ(Apple(EncodedPosting(2, {9}) + Units({1, 65535})), Units({1, 65535}));
}

TEST_F(ShrinkDamagedTest, LoneCodeAtTheEndIsAPosting) {
  EXPECT_EQ(Apple(EncodedPosting(2, {9}) + Units({1})), Units({1}));
  EXPECT_EQ(Apple(EncodedPosting(1, {9}) + Units({2})), EncodedPosting(1, {9}));
}

TEST_F(ShrinkDamagedTest, OddByteStaysWhereNothingIsPurged) {
  EXPECT_EQ(Apple(EncodedPosting(1, {9}) + "x"), EncodedPosting(1, {9}) + "x");
  EXPECT_EQ(Apple("x"), "x");
}

TEST_F(ShrinkDamagedTest, OddByteGoesWithAPurgedPosting) {
  EXPECT_EQ(Apple(EncodedPosting(2, {9}) + EncodedPosting(1, {3}) + "x"), EncodedPosting(1, {3}));
  EXPECT_EQ(Apple(Units({2, 1}) + "x", kNoPositions), Units({1}));
}

TEST_F(ShrinkDamagedTest, EveryTruncationOfARecordIsServed) {
  const std::string whole =
      EncodedPosting(1, {8}) + EncodedPosting(2, {9, 9}) + EncodedPosting(3, {8, 8});
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const std::string shrunk = Apple(whole.substr(0, size));
    EXPECT_EQ(shrunk.substr(0, 6), whole.substr(0, std::min<std::size_t>(size, 6))) << size;
    EXPECT_LE(shrunk.size(), size);
  }
}

TEST_F(ShrinkDamagedTest, AnyChangedByteIsServed) {
  const std::string whole =
      EncodedPosting(1, {8}) + EncodedPosting(2, {9, 9}) + EncodedPosting(3, {8, 8});
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string changed = whole;
    changed[at] = '\xff';
    EXPECT_LE(Apple(changed).size(), whole.size()) << at;
  }
}

// No document has code 0, so its postings are damage and go with any removal.
TEST_F(ShrinkDamagedTest, PostingsOfCode0GoToo) {
  EXPECT_EQ(Apple(EncodedPosting(0, {1}) + EncodedPosting(3, {0})), EncodedPosting(3, {0}));
  const Records stored =
      Shrunk({{"pear", EncodedPosting(0, {1}) + EncodedPosting(3, {0})}, {"g-deleted", ""}});
  EXPECT_EQ(stored.at("pear"), EncodedPosting(3, {0}));
}

TEST_F(ShrinkDamagedTest, PostingsOfCode0StayWhereNothingWasRemoved) {
  const std::string postings = EncodedPosting(0, {1}) + EncodedPosting(3, {0});
  EXPECT_EQ(Shrunk({{"pear", postings}}).at("pear"), postings);
}

TEST_F(ShrinkDamagedTest, OddByteOfTheRemovedCodesIsNoCode) {
  const std::string postings =
      EncodedPosting(1, {1}) + EncodedPosting(2, {1}) + EncodedPosting('x', {1});
  const Records stored = Shrunk({{"apple", postings}, {"g-deleted", Units({2}) + "x"}});
  EXPECT_EQ(stored.at("apple"), EncodedPosting(1, {1}) + EncodedPosting('x', {1}));
  EXPECT_EQ(stored.count("g-deleted"), 0U);
}

TEST_F(ShrinkDamagedTest, CodesOfOddListsAreReusedAllTheSame) {
  PlantAndReopen({{"g-deleted", Units({2}) + "x"}, {"g-code", Units({2})}});
  engine_.ShrinkIndex();
  engine_.AddDocumentWords("one", "");
  EXPECT_EQ(Stored().at(NameKey(2)), "one");
}

}  // namespace
}  // namespace kestan_tests
