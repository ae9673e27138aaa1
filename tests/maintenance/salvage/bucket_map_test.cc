// SPDX-License-Identifier: GPL-3.0-or-later
// Which buckets a damaged file is seen to have.
#include <kestan/maintenance/salvage/bucket_map.h>

#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

using gdbm::Authority;

using BucketMapTest = CraftedFile;

TEST_F(BucketMapTest, ABucketIsReachedThroughItsEntry) {
  PutHeader();
  PutBucket(kBucketPlace, 5, kBits);
  PutEntries({5}, kBucketPlace);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.reached().size(), 1U);
  EXPECT_EQ(map.reached()[0].first, 5U << 25);
  EXPECT_EQ(map.reached()[0].last, (6U << 25) - 1);
  EXPECT_TRUE(map.reached()[0].is_intact);
}

TEST_F(BucketMapTest, ABucketOfMoreBitsThanTheDirectoryCountsForItsOwnHashes) {
  PutHeader();
  PutBucket(kBucketPlace, 10, kBits + 1);
  PutEntries({5}, kBucketPlace);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.reached().size(), 1U);
  EXPECT_EQ(map.reached()[0].first, 5U << 25);
  EXPECT_EQ(map.reached()[0].last, (11U << 24) - 1);
}

TEST_F(BucketMapTest, AnEntryForOtherHashesThanThoseOfTheBucketDoesNotReachIt) {
  for (const unsigned entry : {4U, 6U}) {
    PutHeader();
    PutBucket(kBucketPlace, 5, kBits);
    PutBucket(kOtherPlace, 20, kBits);
    PutEntries({4, 6}, 0);
    PutEntries({entry}, kBucketPlace);
    PutEntries({20}, kOtherPlace);
    const gdbm::Bytes bytes(file_);
    const gdbm::BucketMap map(bytes);
    ASSERT_EQ(map.reached().size(), 1U) << entry;
    EXPECT_EQ(map.reached()[0].at, kOtherPlace) << entry;
    ASSERT_EQ(map.orphans().size(), 1U) << entry;
    EXPECT_EQ(map.orphans()[0].at, kBucketPlace) << entry;
  }
}

TEST_F(BucketMapTest, AnEmptyBucketIsReachedByJustTheEntriesThatItsBitsAskFor) {
  PutHead(kBucketPlace, kBits - 1, 0);
  const std::vector<std::vector<unsigned>> runs = {{2, 3}, {1, 2}, {2}, {2, 3, 4}};
  for (const auto& run : runs) {
    PutHeader();
    PutEntries({1, 2, 3, 4}, 0);
    for (const unsigned entry : run) PutEntries({entry}, kBucketPlace);
    const gdbm::Bytes bytes(file_);
    EXPECT_EQ(gdbm::BucketMap(bytes).reached().size(), run == runs[0] ? 1U : 0U) << run.size();
  }
}

TEST_F(BucketMapTest, AnEmptyBucketYieldsToOrphanBucketsOfAsManyBits) {
  PutHeader();
  PutHead(kOtherPlace, 1, 0);
  for (unsigned entry = 0; entry < kEntries / 2; ++entry) PutEntries({entry}, kOtherPlace);
  PutBucket(kBucketPlace, 5, kBits);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.orphans().size(), 2U);
  EXPECT_EQ(map.orphans()[1].at, kBucketPlace);
  EXPECT_EQ(map.AuthorityOf(map.orphans()[1], 5U << 25), Authority::kCurrent);
}

TEST_F(BucketMapTest, ABucketThatWasSplitYieldsToItsPartsThoughTheDirectoryLeadsToIt) {
  PutHeader();
  PutBucket(kOtherPlace, 2, kBits - 1);
  PutEntries({4, 5}, kOtherPlace);
  PutBucket(kBucketPlace, 5, kBits);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  EXPECT_FALSE(map.is_whole());
  ASSERT_EQ(map.orphans().size(), 2U);
  EXPECT_EQ(map.orphans()[0].at, kOtherPlace);
  EXPECT_EQ(map.AuthorityOf(map.orphans()[0], 5U << 25), Authority::kStale);
  EXPECT_EQ(map.AuthorityOf(map.orphans()[0], 4U << 25), Authority::kFallback);
  EXPECT_EQ(map.AuthorityOf(map.orphans()[1], 5U << 25), Authority::kCurrent);
}

TEST_F(BucketMapTest, AnEmptyBucketOutweighsWhatWasThereBeforeItsSplit) {
  PutHeader();
  PutHead(kOtherPlace, kBits, 0);
  PutEntries({5}, kOtherPlace);
  PutBucket(kBucketPlace, 2, kBits - 1);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.reached().size(), 1U);
  ASSERT_EQ(map.orphans().size(), 1U);
  EXPECT_EQ(map.AuthorityOf(map.orphans()[0], 5U << 25), Authority::kStale);
  EXPECT_EQ(map.AuthorityOf(map.orphans()[0], 4U << 25), Authority::kFallback);
}

TEST_F(BucketMapTest, OfTwoBucketsForTheSameHashesTheOneThatLacksNothingIsBelieved) {
  PutHead(kBucketPlace, kBits, 2);
  Put(gdbm::ElementAt(kBucketPlace, 0), AddKeys(1, 5, kBits).front());
  PutBucket(kOtherPlace, 5, kBits);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.orphans().size(), 2U);
  for (const gdbm::FoundBucket& orphan : map.orphans()) {
    const Authority expected =
        orphan.at == kOtherPlace ? Authority::kCurrent : Authority::kFallback;
    EXPECT_EQ(map.AuthorityOf(orphan, 5U << 25), expected);
  }
}

TEST_F(BucketMapTest, AnEntryThatLeadsToTheLastBytesReachesNoBucket) {
  PutHeader();
  PutEntries({5}, file_.size() - 10);
  const gdbm::Bytes bytes(file_);
  EXPECT_TRUE(gdbm::BucketMap(bytes).reached().empty());
}

// 38 elements, or 39 where structures are not padded.
TEST_F(BucketMapTest, ElementsInTheirPlacesMakeABucketOfALargeBlock) {
  PutHeader(1024);
  PutHead(kBucketPlace, kBits, 6);
  for (const gdbm::Element& element : AddKeys(6, 5, kBits)) PutAtHome(kBucketPlace, element);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  EXPECT_EQ(map.orphans().size(), 1U);
  EXPECT_TRUE(map.orphan_elements().empty());
}

TEST_F(BucketMapTest, ABucketThatIsCutOffIsOneAsFarAsItGoes) {
  PutHeader(1024);
  const gdbm::Element element = AddKeys(1, 5, kBits).front();
  const auto bucket = Offset{file_.size()};
  const auto home = static_cast<std::uint32_t>(element.hash) % shape_.elements;
  ASSERT_LT(home, shape_.elements - 1);
  file_.resize(file_.size() + shape_.bucket_bytes);
  PutHead(bucket, kBits, 1);
  PutAtHome(bucket, element);
  file_.resize(static_cast<std::size_t>(gdbm::ElementAt(bucket, home + 1)));
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.orphans().size(), 1U);
  EXPECT_EQ(map.orphans()[0].at, bucket);
}

TEST_F(BucketMapTest, AnElementTooNearToTheStartIsInNoBucket) {
  Put(gdbm::ElementAt(0, 0) - 1, Add("key"));
  Put(gdbm::ElementAt(0, 3), Add("other"));
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  EXPECT_EQ(map.orphan_elements().size(), 2U);
}

// How much of long keys is hashed has a limit, which the element itself uses up here.
TEST_F(BucketMapTest, AnElementWhoseKeyIsTooLongToBeHashedAgainBelongsToNoBucket) {
  PutHeader();
  const gdbm::Element element = Add(std::string(1 << 20, 'k'));
  PutHead(kBucketPlace, 0, 1);
  Put(gdbm::ElementAt(kBucketPlace, shape_.elements - 1), element);
  const gdbm::Bytes other(file_);
  const gdbm::Bytes bytes(file_);
  ASSERT_TRUE(other.IsValid(element));
  while (other.IsValid(element)) ASSERT_TRUE(bytes.IsValid(element));
  const gdbm::BucketMap map(bytes);
  EXPECT_TRUE(map.orphans().empty());
  EXPECT_EQ(map.orphan_elements().size(), 1U);
}

TEST_F(BucketMapTest, ADirectoryIsFoundWithoutTheHeader) {
  PutBucket(kBucketPlace, 5, kBits);
  PutEntries({5}, kBucketPlace);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  EXPECT_EQ(map.directory(), kDirectoryPlace);
  EXPECT_EQ(map.directory_bytes(), 8U * kEntries);
  EXPECT_EQ(map.reached().size(), 1U);
  EXPECT_TRUE(map.orphans().empty());
}

TEST_F(BucketMapTest, NoDirectoryBeginsAtTheStartOfTheFileOrBeforeIt) {
  for (const Offset place : {Offset{8}, Offset{40}}) {
    file_.assign(8192, '\0');
    PutBucket(kBucketPlace, 5, kBits);
    Put(place, kBucketPlace);  // entry 5 is at byte 40 of a directory
    const gdbm::Bytes bytes(file_);
    EXPECT_EQ(gdbm::BucketMap(bytes).directory(), 0U) << place;
  }
}

// Of its two buckets, only the one that is looked for first would have its entry in the file.
TEST_F(BucketMapTest, NoDirectoryWithMostOfItsEntriesPastTheEndIsTaken) {
  PutBucket(kBucketPlace, 5, kBits);
  PutBucket(kOtherPlace, 31, kBits - 1);
  const Offset last = file_.size();
  file_.append(sizeof last, '\0');
  Put(last, kBucketPlace);
  const gdbm::Bytes bytes(file_);
  EXPECT_EQ(gdbm::BucketMap(bytes).directory(), 0U);
}

TEST_F(BucketMapTest, NoDirectoryIsLookedForThatIsLargerThanAnyFile) {
  constexpr unsigned kTooMany = 28;
  const gdbm::Element element = Add("key 10037160");  // its hash begins with 22 zeros
  const gdbm::Hash index = gdbm::PrefixOf(static_cast<gdbm::Hash>(element.hash), kTooMany);
  ASSERT_LT(index, kEntries);
  PutHead(kBucketPlace, kTooMany, 1);
  Put(gdbm::ElementAt(kBucketPlace, 0), element);
  PutEntries({index}, kBucketPlace);
  const gdbm::Bytes bytes(file_);
  const gdbm::BucketMap map(bytes);
  ASSERT_EQ(map.orphans().size(), 1U);
  EXPECT_EQ(map.directory(), 0U);
}

// Two buckets, so that a place where only one of them is listed is not taken.
TEST_F(BucketMapTest, ADirectoryIsLookedForIn64Places) {
  for (const unsigned others : {63U, 64U}) {
    file_.assign(8192, '\0');
    PutBucket(kBucketPlace, 5, kBits);
    PutBucket(kOtherPlace, 6, kBits);
    for (unsigned i = 0; i < others; ++i) Put(1024 + Offset{i} * 8, kOtherPlace);
    constexpr Offset kAfter = 6144;
    PutEntries({5}, kBucketPlace, kAfter);
    PutEntries({6}, kOtherPlace, kAfter);
    const gdbm::Bytes bytes(file_);
    EXPECT_EQ(gdbm::BucketMap(bytes).directory(), others == 63 ? kAfter : 0U);
  }
}

}  // namespace
}  // namespace kestan_maintenance
