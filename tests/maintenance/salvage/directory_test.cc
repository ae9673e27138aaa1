// SPDX-License-Identifier: GPL-3.0-or-later
// The buckets that a directory reaches, and where a directory without a header is found.
#include <kestan/maintenance/salvage/directory.h>

#include <vector>

#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

class ReadDirectoryTest : public CraftedFile {
 protected:
  void SetUp() override { PutHeader(); }

  kestan::Vector<gdbm::FoundBucket> Reached() const {
    const gdbm::Bytes bytes(file_);
    return gdbm::ReadDirectory(bytes, shape_, kDirectoryPlace, kBits);
  }
};

TEST_F(ReadDirectoryTest, BucketsComeByAscendingHashes) {
  PutBucket(kBucketPlace, 20, kBits);
  PutBucket(kOtherPlace, 5, kBits);
  PutEntries({20}, kBucketPlace);
  PutEntries({5}, kOtherPlace);
  const auto reached = Reached();
  ASSERT_EQ(reached.size(), 2U);
  EXPECT_EQ(reached[0].at, kOtherPlace);
  EXPECT_EQ(reached[0].first, 5U << 25);
  EXPECT_EQ(reached[1].at, kBucketPlace);
  EXPECT_TRUE(reached[1].is_reached && reached[1].has_head && reached[1].is_intact);
}

TEST_F(ReadDirectoryTest, EntriesIntoTheHeaderOrPastTheEndReachNothing) {
  PutEntries({1}, sizeof(gdbm::Header) - 1);
  PutEntries({2}, file_.size());
  PutEntries({3}, ~Offset{0});
  EXPECT_TRUE(Reached().empty());
}

TEST_F(ReadDirectoryTest, ABucketIsReachedOnceThoughAnEntryBetweenItsRunsIsDamaged) {
  PutBucket(kBucketPlace, 1, kBits - 2);
  PutEntries({4, 6, 7}, kBucketPlace);
  const auto reached = Reached();
  ASSERT_EQ(reached.size(), 1U);
  EXPECT_EQ(reached[0].first, 4U << 25);
  EXPECT_EQ(reached[0].last, (8U << 25) - 1);
}

TEST_F(ReadDirectoryTest, OfTwoBucketsForTheSameHashesTheOneWithItsHeadStays) {
  PutBucket(kBucketPlace, 4, kBits);
  Put(kBucketPlace, std::int32_t{-1});  // no head has so little free space
  PutEntries({4}, kBucketPlace);
  ASSERT_EQ(Reached().size(), 1U);
  PutBucket(kOtherPlace, 2, kBits - 1);
  PutEntries({5}, kOtherPlace);
  const auto reached = Reached();
  ASSERT_EQ(reached.size(), 1U);
  EXPECT_EQ(reached[0].at, kOtherPlace);
}

TEST_F(ReadDirectoryTest, ABucketWithoutAHeadHasTheHashesOfItsEntries) {
  PutBucket(kBucketPlace, 5, kBits);
  Put(kBucketPlace, std::int32_t{-1});
  PutEntries({4, 5}, kBucketPlace);
  const auto reached = Reached();
  ASSERT_EQ(reached.size(), 1U);
  EXPECT_FALSE(reached[0].has_head || reached[0].is_intact || reached[0].is_complete);
  EXPECT_EQ(reached[0].first, 4U << 25);
  EXPECT_EQ(reached[0].last, (6U << 25) - 1);
  PutEntries({4, 5}, 0);
  PutEntries({6}, kBucketPlace);
  EXPECT_TRUE(Reached().empty());
}

TEST_F(ReadDirectoryTest, BytesWithoutAHeadOrAnElementAreNoBucket) {
  Put(kBucketPlace, std::int32_t{-1});
  PutEntries({5}, kBucketPlace);
  EXPECT_TRUE(Reached().empty());
}

class FindDirectoryTest : public CraftedFile {
 protected:
  // Searches the directory of a file with these buckets, which are sorted by bits.
  gdbm::DirectoryPlace Found(const std::vector<gdbm::FoundBucket>& buckets) const {
    const gdbm::Bytes bytes(file_);
    return gdbm::FindDirectory(bytes, {buckets.begin(), buckets.end()});
  }

  static gdbm::FoundBucket BucketOf(Offset at, gdbm::Hash prefix, unsigned bits) {
    gdbm::FoundBucket bucket;
    bucket.at = at;
    bucket.SetHashes(prefix, bits);
    return bucket;
  }
};

TEST_F(FindDirectoryTest, WithoutBucketsThereIsNone) { EXPECT_EQ(Found({}).at, 0U); }

TEST_F(FindDirectoryTest, ItIsWhereMostBucketsAreListed) {
  const std::vector buckets{BucketOf(2048, 5, kBits), BucketOf(4096, 9, kBits)};
  PutEntries({5}, 2048);
  EXPECT_EQ(Found(buckets).at, 0U);
  PutEntries({9}, 4096);
  EXPECT_EQ(Found(buckets).at, kDirectoryPlace);
  EXPECT_EQ(Found(buckets).bits, kBits);
}

TEST_F(FindDirectoryTest, ItHasAsManyEntriesAsTheBucketWithMostBitsNeeds) {
  PutEntries({70}, 4096);
  EXPECT_EQ(Found({BucketOf(4096, 70, kBits + 1)}).at, kDirectoryPlace);
  EXPECT_EQ(Found({BucketOf(4096, 70, kBits + 1)}).bits, kBits + 1);
  PutEntries({4}, 2048);
  EXPECT_EQ(Found({BucketOf(2048, 1, kBits - 2)}).at, kDirectoryPlace);
  EXPECT_EQ(Found({BucketOf(2048, 1, kBits - 2)}).bits, kBits);
}

}  // namespace
}  // namespace kestan_maintenance
