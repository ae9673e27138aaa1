// SPDX-License-Identifier: GPL-3.0-or-later
// The postings of one word as a view of their record.
#include <kestan/query/word_postings.h>

#include <kestan/storage/owned_datum.h>

#include "tests/query/query_test.h"

namespace kestan_tests {
namespace {

using kestan::WordPostings;

WordPostings PostingsIn(const std::string& record, bool with_positions = true) {
  return {kestan::CopyDatum(Datum(record)), with_positions};
}

// Returns postings as "CODE: POSITION...".
std::vector<std::string> ToStrings(const WordPostings& postings) {
  std::vector<std::string> strings;
  for (WordPostings::Cursor cursor(postings); cursor.Next();) {
    std::string posting = std::to_string(cursor.code()) + ":";
    for (std::size_t i = 0; i < cursor.positions().size(); ++i) {
      posting += " " + std::to_string(cursor.positions()[i]);
    }
    strings.push_back(posting);
  }
  return strings;
}

using Strings = std::vector<std::string>;

TEST(WordPostingsTest, AreThoseOfTheRecord) {
  const auto postings = PostingsIn(EncodedPosting(3, {1, 258}) + EncodedPosting(700, {65535}));
  EXPECT_TRUE(postings.has_word());
  EXPECT_EQ(postings.CountDocuments(), 2u);
  EXPECT_EQ(ToStrings(postings), Strings({"3: 1 258", "700: 65535"}));
}

TEST(WordPostingsTest, OfAWordThatTheIndexLacksAreNone) {
  const WordPostings postings;
  EXPECT_FALSE(postings.has_word());
  EXPECT_EQ(postings.CountDocuments(), 0u);
  EXPECT_EQ(ToStrings(postings), Strings());
}

TEST(WordPostingsTest, OfAnEmptyRecordAreNoneOfAKnownWord) {
  const auto postings = PostingsIn("");
  EXPECT_TRUE(postings.has_word());
  EXPECT_EQ(ToStrings(postings), Strings());
}

TEST(WordPostingsTest, WithoutPositionsAreCodesAlone) {
  const auto postings = PostingsIn(Units({2, 5, 9}), false);
  EXPECT_EQ(postings.CountDocuments(), 3u);
  EXPECT_EQ(ToStrings(postings), Strings({"2:", "5:", "9:"}));
}

TEST(WordPostingsTest, CodeThatWasUsedAgainComesInItsOrder) {
  const auto postings =
      PostingsIn(EncodedPosting(1, {1}) + EncodedPosting(9, {2, 3}) + EncodedPosting(4, {7}));
  EXPECT_EQ(ToStrings(postings), Strings({"1: 1", "4: 7", "9: 2 3"}));
}

TEST(WordPostingsTest, OfOneCodeTwiceTheFirstStays) {
  const auto postings =
      PostingsIn(EncodedPosting(4, {7}) + EncodedPosting(4, {8}) + EncodedPosting(1, {1}));
  EXPECT_EQ(postings.CountDocuments(), 3u);
  EXPECT_EQ(ToStrings(postings), Strings({"1: 1", "4: 7"}));
}

TEST(WordPostingsTest, CodesOutOfOrderWithoutPositionsAreSorted) {
  EXPECT_EQ(ToStrings(PostingsIn(Units({5, 2, 9, 2}), false)), Strings({"2:", "5:", "9:"}));
}

TEST(WordPostingsTest, CutRecordInOrderGivesWhatItHolds) {
  const std::string record = EncodedPosting(2, {1, 2}) + EncodedPosting(6, {3, 4, 5});
  EXPECT_EQ(ToStrings(PostingsIn(record.substr(0, record.size() - 3))),
            Strings({"2: 1 2", "6: 3"}));
  EXPECT_EQ(ToStrings(PostingsIn(record.substr(0, 10))), Strings({"2: 1 2", "6:"}));
}

// The posting that claims more positions than there are is no longer the last one.
TEST(WordPostingsTest, CutRecordOutOfOrderGivesWhatItHolds) {
  const std::string record = EncodedPosting(6, {1, 2}) + Units({2, 9, 3});
  EXPECT_EQ(ToStrings(PostingsIn(record)), Strings({"2: 3", "6: 1 2"}));
  EXPECT_EQ(ToStrings(PostingsIn(EncodedPosting(6, {1, 2}) + Units({2}))),
            Strings({"2:", "6: 1 2"}));
}

TEST(WordPostingsTest, EveryCutOfARecordIsRead) {
  const std::string record =
      EncodedPosting(6, {1, 2}) + EncodedPosting(2, {4}) + EncodedPosting(8, {5, 6, 7});
  for (std::size_t size = 0; size <= record.size(); ++size) {
    const auto postings = PostingsIn(record.substr(0, size));
    EXPECT_EQ(ToStrings(postings).size(), postings.CountDocuments()) << size;
    EXPECT_LE(postings.CountDocuments(), 3u);
  }
}

}  // namespace
}  // namespace kestan_tests
