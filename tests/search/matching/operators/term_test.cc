// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/index_builder.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/search/matching/operators/occurrences.h"
#include "tests/search/matching/plain_segments.h"

namespace kestan::search {
namespace {

using kestan_tests::Plain;
using kestan_tests::PlainSegments;
using List = std::vector<Position>;

constexpr std::uint32_t kDocuments = 3;

// The record of a word in document 1 at 5, in document 3 at 2 and 9.
std::string Record() {
  const List first = {5};
  const List third = {2, 9};
  std::string record;
  AppendPosting(1, Positions{first.data(), first.size()}, &record);
  AppendPosting(3, Positions{third.data(), third.size()}, &record);
  return record;
}

class TermOperatorTest : public testing::Test {
 protected:
  // Reads `record`, which is said to list `documents`, in a segment of three documents.
  Result<Occurrences> Read(const std::string& record, std::uint32_t documents) {
    return ReadTerm({Bytes(std::make_shared<const std::string>(record)), documents}, *segment_,
                    Need::kPositions);
  }

  PlainSegments segments_;
  std::shared_ptr<const Segment> segment_ = segments_.AddRecords(kDocuments, {});
};

TEST_F(TermOperatorTest, PostingsAreReadWithTheirPositions) {
  const auto found = Read(Record(), 2);
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(found->codes, (std::vector<Code>{1, 3}));
  EXPECT_EQ(found->counts, (std::vector<std::uint32_t>{1, 2}));
  EXPECT_EQ(kestan_tests::PlacesIn(*found), (kestan_tests::Places{{1, {5}}, {3, {2, 9}}}));
}

TEST_F(TermOperatorTest, EachTruncationIsDamage) {
  const std::string record = Record();
  for (std::size_t size = 0; size + 1 < record.size(); ++size) {
    const auto found = Read(record.substr(0, size), 2);
    ASSERT_FALSE(found.ok()) << size;
    EXPECT_EQ(found.status().code(), StatusCode::kDamaged);
  }
}

TEST_F(TermOperatorTest, OtherNumberOfDocumentsIsDamage) {
  EXPECT_FALSE(Read(Record(), 1).ok());
  EXPECT_FALSE(Read(Record(), 3).ok());
  EXPECT_FALSE(Read(Record(), 4000000000).ok());
  EXPECT_TRUE(Read("", 0).ok());
}

TEST_F(TermOperatorTest, CodesOutOfOrderOrRangeAreDamage) {
  const auto with_codes = [](Code first, Code second) {
    const Position position = 1;
    std::string record;
    AppendPosting(first, Positions{&position, 1}, &record);
    AppendPosting(second, Positions{&position, 1}, &record);
    return record;
  };
  EXPECT_TRUE(Read(with_codes(1, 3), 2).ok());
  EXPECT_FALSE(Read(with_codes(1, 4), 2).ok());
  EXPECT_FALSE(Read(with_codes(0, 3), 2).ok());
  EXPECT_FALSE(Read(with_codes(2, 2), 2).ok());
  EXPECT_FALSE(Read(with_codes(3, 2), 2).ok());
}

TEST_F(TermOperatorTest, PostingWithoutPositionsIsDamage) {
  std::string record;
  AppendPosting(1, Positions{nullptr, 0}, &record);
  EXPECT_FALSE(Read(record, 1).ok());
}

TEST_F(TermOperatorTest, ChangedBytesNeverReachOutsideTheRecord) {
  for (std::size_t at = 0; at < Record().size(); ++at) {
    for (int bit = 0; bit < 8; ++bit) {
      std::string record = Record();
      record[at] = static_cast<char>(record[at] ^ (1 << bit));
      const auto found = Read(record, 2);
      if (found.ok()) kestan_tests::PlacesIn(*found);
    }
  }
}

TEST(TermOperatorOfEditedSegmentTest, RemovedDocumentsAreLeftOut) {
  PlainSegments segments;
  auto documents = std::vector{Plain("a", "x y"), Plain("b", "x"), Plain("c", "y x x")};
  documents[1].is_removed = true;
  const auto segment = segments.Add(documents);
  const auto postings = segment->FindTerm("x");
  ASSERT_TRUE(postings.ok());
  const auto found = ReadTerm(*postings, *segment, Need::kPositions);
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(kestan_tests::PlacesIn(*found), (kestan_tests::Places{{1, {1}}, {3, {2, 3}}}));
}

TEST(TermOperatorOfSegmentWithoutPositionsTest, EachDocumentCountsOnce) {
  PlainSegments segments;
  const auto segment = segments.Add({Plain("a", "x x"), Plain("b", "y")}, false);
  const auto postings = segment->FindTerm("x");
  ASSERT_TRUE(postings.ok());
  const auto found = ReadTerm(*postings, *segment, Need::kPositions);
  ASSERT_TRUE(found.ok());
  EXPECT_EQ(found->codes, std::vector<Code>{1});
  EXPECT_EQ(found->counts, std::vector<std::uint32_t>{1});
}

}  // namespace
}  // namespace kestan::search
