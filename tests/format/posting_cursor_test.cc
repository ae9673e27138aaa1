// SPDX-License-Identifier: GPL-3.0-or-later
// Reading the postings of a record. It meets every truncation of a good record and every changed
// byte, in memory that ends with the record.
#include <kestan/format/posting_cursor.h>

#include <string>
#include <vector>

#include "tests/format/plain_postings.h"
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

using kestan::PostingCursor;
using kestan::WholePostingCursor;

const std::string kGood = Units({7, 2, 10, 20, 9, 0, 300, 3, 1, 65535, 1, 65535, 1, 5});

std::vector<PlainPosting> Postings(const std::string& record, bool with_positions) {
  const DBDatumPtr copy = Counted(record);
  std::vector<PlainPosting> postings;
  for (PostingCursor cursor({copy.ptr->data, copy.ptr->size}, with_positions); cursor.Next();) {
    const auto units = UnitsOf(std::string(cursor.bytes()));
    const kestan::EncodedPositions positions = cursor.positions();
    postings.push_back({units, cursor.code(), {positions.begin(), positions.end()}});
  }
  return postings;
}

TEST(PostingCursorTest, FindsEachPostingWithItsPositions) {
  PostingCursor cursor(kGood, true);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.code(), 7);
  ASSERT_EQ(cursor.positions().size(), 2u);
  EXPECT_EQ(cursor.positions()[1], 20);
  EXPECT_EQ(cursor.bytes(), Units({7, 2, 10, 20}));
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.code(), 9);
  EXPECT_EQ(cursor.positions().size(), 0u);
  EXPECT_EQ(cursor.bytes(), Units({9, 0}));
}

TEST(PostingCursorTest, WithoutPositionsEachUnitIsACode) {
  PostingCursor cursor(kGood, false);
  std::vector<unsigned> codes;
  while (cursor.Next()) {
    codes.push_back(cursor.code());
    EXPECT_EQ(cursor.positions().size(), 0u);
    EXPECT_EQ(cursor.bytes().size(), 2u);
  }
  EXPECT_EQ(codes, UnitsOf(kGood));
}

TEST(PostingCursorTest, RecordWithoutBytesHasNoPosting) {
  EXPECT_FALSE(PostingCursor().Next());
  EXPECT_FALSE(PostingCursor({}, true).Next());
  EXPECT_FALSE(PostingCursor("x", true).Next());
  EXPECT_FALSE(PostingCursor("x", false).Next());
}

TEST(PostingCursorTest, StaysAtTheLastPosting) {
  const std::string record = Units({7, 1, 10});
  PostingCursor cursor(record, true);
  ASSERT_TRUE(cursor.Next());
  EXPECT_FALSE(cursor.Next());
  EXPECT_FALSE(cursor.Next());
  EXPECT_EQ(cursor.code(), 7);
  EXPECT_EQ(cursor.positions()[0], 10);
}

TEST(PostingCursorTest, CopyGoesOnFromTheSamePlace) {
  PostingCursor cursor(kGood, true);
  ASSERT_TRUE(cursor.Next());
  PostingCursor copy = cursor;
  ASSERT_TRUE(copy.Next());
  ASSERT_TRUE(copy.Next());
  EXPECT_EQ(copy.code(), 300);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.code(), 9);
}

TEST(PostingCursorTest, ReadsDamagedRecordsAsAPlainReaderDoes) {
  const auto check = [](const std::string& record) {
    for (const bool with_positions : {true, false}) {
      ASSERT_EQ(Postings(record, with_positions), PlainPostings(record, with_positions));
    }
  };
  for (std::size_t size = 0; size <= kGood.size(); ++size) check(kGood.substr(0, size));
  for (std::size_t at = 0; at < kGood.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = kGood;
      changed[at] = static_cast<char>(byte);
      check(changed);
    }
  }
}

TEST(WholePostingCursorTest, FindsEachPostingAndTheEnd) {
  const std::string record = Units({7, 2, 10, 20, 300, 1, 65535});
  WholePostingCursor cursor(record);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.code(), 7);
  ASSERT_EQ(cursor.positions().size(), 2u);
  EXPECT_EQ(cursor.positions()[1], 20);
  EXPECT_FALSE(cursor.AtEnd());
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.code(), 300);
  EXPECT_EQ(cursor.positions()[0], 65535);
  EXPECT_FALSE(cursor.Next());
  EXPECT_TRUE(cursor.AtEnd());
  EXPECT_TRUE(WholePostingCursor("").AtEnd());
}

// Reads as far as the postings of the plain reader are whole.
void ExpectWholePostings(const std::string& record) {
  const DBDatumPtr copy = Counted(record);
  WholePostingCursor cursor({copy.ptr->data, copy.ptr->size});
  std::size_t bytes = 0;
  for (const PlainPosting& posting : PlainPostings(record, true)) {
    const std::size_t stated = posting.units.size() > 1 ? posting.units[1] : 0;
    if (stated == 0 || posting.positions.size() != stated) break;
    ASSERT_TRUE(cursor.Next());
    const kestan::EncodedPositions positions = cursor.positions();
    ASSERT_EQ(cursor.code(), posting.code);
    ASSERT_EQ(std::vector<unsigned>(positions.begin(), positions.end()), posting.positions);
    bytes += posting.units.size() * 2;
  }
  ASSERT_FALSE(cursor.Next());
  ASSERT_EQ(cursor.AtEnd(), bytes == record.size());
}

TEST(WholePostingCursorTest, StopsAtTheFirstPostingThatIsDamaged) {
  const std::string good = Units({7, 2, 10, 20, 9, 1, 4, 300, 3, 1, 65535, 1});
  for (std::size_t size = 0; size <= good.size(); ++size) {
    ExpectWholePostings(good.substr(0, size));
  }
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = good;
      changed[at] = static_cast<char>(byte);
      ExpectWholePostings(changed);
    }
  }
}

}  // namespace
}  // namespace kestan_tests
