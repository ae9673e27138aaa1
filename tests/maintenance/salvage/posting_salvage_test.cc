// SPDX-License-Identifier: GPL-3.0-or-later
// Posting records of which some bytes are damaged.
#include <kestan/maintenance/salvage/posting_salvage.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/maintenance/index_files.h"

namespace kestan_maintenance {
namespace {

using kestan_tests::Datum;
using kestan_tests::Units;

class PostingSalvageTest : public testing::Test {
 protected:
  // Returns the postings found in `record`, each as its bytes.
  std::vector<std::string> Postings(const std::string& record) {
    whole_ = salvage_.Read(Datum(record));
    std::vector<std::string> postings;
    for (const kestan::WholePosting& posting : salvage_.postings()) {
      postings.push_back(record.substr(std::size_t{posting.first_unit} * 2, posting.units() * 2));
      EXPECT_EQ(posting.code, kestan::UnitAt(Datum(postings.back()), 0));
    }
    return postings;
  }

  using Strings = std::vector<std::string>;

  kestan::PostingRules rules_{true, 1000};
  kestan::CodeSet long_documents_;
  kestan::PostingSalvage salvage_{rules_, long_documents_};
  bool whole_ = false;
};

TEST_F(PostingSalvageTest, AnEmptyRecordIsWhole) {
  EXPECT_EQ(Postings(""), Strings());
  EXPECT_TRUE(whole_);
}

TEST_F(PostingSalvageTest, AGoodRecordIsTakenAsItIs) {
  EXPECT_EQ(Postings(Units({1, 1, 5, 2, 2, 1, 3})),
            Strings({Units({1, 1, 5}), Units({2, 2, 1, 3})}));
  EXPECT_TRUE(whole_);
}

TEST_F(PostingSalvageTest, APostingThatRunsPastTheEndIsLeftOut) {
  EXPECT_EQ(Postings(Units({1, 1, 5, 2, 2, 1})), Strings({Units({1, 1, 5})}));
  EXPECT_FALSE(whole_);
}

TEST_F(PostingSalvageTest, AnOddLastByteIsLeftOut) {
  EXPECT_EQ(Postings(Units({1, 1, 5}) + "x"), Strings({Units({1, 1, 5})}));
  EXPECT_FALSE(whole_);
}

TEST_F(PostingSalvageTest, TheHighestCodeIsPossibleAndTheNextIsNot) {
  EXPECT_EQ(Postings(Units({1000, 1, 5})).size(), 1U);
  EXPECT_TRUE(whole_);
  EXPECT_EQ(Postings(Units({1001, 1, 5})).size(), 0U);
  EXPECT_FALSE(whole_);
}

TEST_F(PostingSalvageTest, CodeZeroIsLeftOut) {
  EXPECT_EQ(Postings(Units({0, 1, 5, 2, 1, 3})), Strings({Units({2, 1, 3})}));
}

TEST_F(PostingSalvageTest, APostingWithoutPositionsIsLeftOut) {
  EXPECT_EQ(Postings(Units({1, 0, 2, 1, 3})), Strings({Units({2, 1, 3})}));
}

TEST_F(PostingSalvageTest, PositionsAscendFromOne) {
  EXPECT_EQ(Postings(Units({1, 2, 5, 5})), Strings());
  EXPECT_EQ(Postings(Units({7, 1, 0})), Strings());
}

TEST_F(PostingSalvageTest, PositionsOfALongDocumentMayDescend) {
  long_documents_.set(1);
  EXPECT_EQ(Postings(Units({1, 3, 5, 65535, 4})).size(), 1U);
  EXPECT_TRUE(whole_);
}

TEST_F(PostingSalvageTest, CodesAloneHaveNoPositions) {
  rules_.with_positions = false;
  EXPECT_EQ(Postings(Units({1, 0, 7, 1001, 5})), Strings({Units({1}), Units({7}), Units({5})}));
}

TEST_F(PostingSalvageTest, PostingsAfterZerosAreFound) {
  EXPECT_EQ(Postings(Units({1, 3, 5, 0, 0, 0, 0, 9, 4, 2, 6, 7, 5, 1, 1})),
            Strings({Units({4, 2, 6, 7}), Units({5, 1, 1})}));
}

// A damaged posting may pass for a good one, and very rarely hides the next.
TEST_F(PostingSalvageTest, PostingsOutsideOfABlockOfDamageAreFound) {
  Dice dice(7);
  std::size_t outside = 0;  // postings that the damage did not touch
  std::size_t missing = 0;  // of these
  std::size_t others = 0;   // postings found that it did touch
  for (int round = 0; round < 400; ++round) {
    std::string record;
    std::vector<std::size_t> starts;
    for (unsigned code = 1; code <= 300; ++code) {
      starts.push_back(record.size());
      const unsigned count = 1 + static_cast<unsigned>(dice.Below(4));
      record += Units({code, count});
      unsigned position = 0;
      for (unsigned i = 0; i < count; ++i) {
        record += Units({position += 1 + static_cast<unsigned>(dice.Below(90))});
      }
    }
    starts.push_back(record.size());
    std::string damaged = record;
    const std::size_t hit = dice.Below(record.size());
    const std::size_t end = std::min(record.size(), hit + kBlockBytes);
    for (std::size_t i = hit; i < end; ++i) damaged[i] = round % 2 == 0 ? '\0' : dice.Byte();

    const Strings found = Postings(damaged);
    const std::size_t outside_before = outside;
    for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
      if (starts[i] < end && starts[i + 1] > hit) continue;
      ++outside;
      const std::string posting = record.substr(starts[i], starts[i + 1] - starts[i]);
      if (std::count(found.begin(), found.end(), posting) != 1) ++missing;
    }
    others += found.size() - std::min(found.size(), outside - outside_before);
  }
  EXPECT_LE(missing * 10000, outside);
  EXPECT_LT(others, 400U / 2);
}

TEST_F(PostingSalvageTest, NoiseIsReadWithinTheRecord) {
  Dice dice(3);
  rules_.highest = kestan::kMaxCode;
  for (int round = 0; round < 2000; ++round) {
    std::string record;
    for (std::size_t left = dice.Below(200); left > 0; --left) {
      record += round % 2 == 0 ? dice.Byte() : static_cast<char>(dice.Below(3));
    }
    std::size_t bytes = 0;
    for (const std::string& posting : Postings(record)) bytes += posting.size();
    EXPECT_LE(bytes, record.size());
  }
}

}  // namespace
}  // namespace kestan_maintenance
