// SPDX-License-Identifier: GPL-3.0-or-later
// Buckets and elements that no entry of the directory leads to.
#include <kestan/maintenance/salvage/orphans.h>

#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

class FindOrphansTest : public CraftedFile {
 protected:
  gdbm::Orphans Found(const kestan::Vector<gdbm::FoundBucket>& reached = {}) const {
    const gdbm::Bytes bytes(file_);
    return gdbm::FindOrphans(bytes, shape_, reached);
  }
};

TEST_F(FindOrphansTest, AFileOfZerosHasNone) {
  EXPECT_TRUE(Found().buckets.empty());
  EXPECT_TRUE(Found().elements.empty());
  file_.resize(3);
  EXPECT_TRUE(Found().elements.empty());
}

TEST_F(FindOrphansTest, ABucketIsFoundAtAnyOffsetWithTheHashesOfItsBits) {
  PutBucket(kBucketPlace + 3, 5, kBits, 2);
  const gdbm::Orphans orphans = Found();
  ASSERT_EQ(orphans.buckets.size(), 1U);
  EXPECT_EQ(orphans.buckets[0].at, kBucketPlace + 3);
  EXPECT_EQ(orphans.buckets[0].bits, kBits);
  EXPECT_EQ(orphans.buckets[0].first, 5U << 25);
  EXPECT_TRUE(orphans.buckets[0].is_intact);
  EXPECT_FALSE(orphans.buckets[0].is_reached);
  EXPECT_TRUE(orphans.elements.empty());
}

TEST_F(FindOrphansTest, ABucketIsFoundOnceForAllOfItsElements) {
  PutHead(kBucketPlace, kBits, 3);
  std::uint32_t place = 0;
  for (const gdbm::Element& element : AddKeys(3, 5, kBits)) {
    Put(gdbm::ElementAt(kBucketPlace, place += 4), element);
  }
  EXPECT_EQ(Found().buckets.size(), 1U);
  EXPECT_TRUE(Found().elements.empty());
}

TEST_F(FindOrphansTest, BucketsComeInTheOrderOfTheFile) {
  PutBucket(kOtherPlace, 5, kBits);
  PutBucket(kBucketPlace, 6, kBits - 1);
  const gdbm::Orphans orphans = Found();
  ASSERT_EQ(orphans.buckets.size(), 2U);
  EXPECT_EQ(orphans.buckets[0].at, kBucketPlace);
  EXPECT_EQ(orphans.buckets[1].at, kOtherPlace);
}

TEST_F(FindOrphansTest, ReachedBucketsWithTheirHeadsArePassedOver) {
  PutBucket(kBucketPlace, 5, kBits);
  gdbm::FoundBucket reached;
  reached.at = kBucketPlace;
  reached.has_head = true;
  EXPECT_TRUE(Found({reached}).buckets.empty());
  reached.has_head = false;
  EXPECT_EQ(Found({reached}).buckets.size(), 1U);
}

TEST_F(FindOrphansTest, ElementsWithoutAHeadBelongToNoBucket) {
  PutBucket(kBucketPlace, 5, kBits);
  Put(kBucketPlace, std::int32_t{-1});
  EXPECT_TRUE(Found().buckets.empty());
  EXPECT_EQ(Found().elements.size(), 1U);
}

TEST_F(FindOrphansTest, AHeadCountsAtLeastTheElementsThatAreThere) {
  PutHead(kBucketPlace, kBits, 1);
  for (std::uint32_t i = 0; i < 2; ++i) {
    Put(gdbm::ElementAt(kBucketPlace, i), AddKeys(1, 5, kBits).front());
  }
  EXPECT_TRUE(Found().buckets.empty());
  EXPECT_EQ(Found().elements.size(), 2U);
}

TEST_F(FindOrphansTest, OfTwoHeadsAroundOneElementTheOneThatLacksNothingHasIt) {
  constexpr std::uint32_t kSlots =  // that the later head covers
      (sizeof(gdbm::BucketHead) + sizeof(gdbm::Element) - 1) / sizeof(gdbm::Element);
  const Offset later = kBucketPlace + kSlots * sizeof(gdbm::Element);
  const gdbm::Element element = AddKeys(1, 5, kBits).front();
  const auto found_at = [&](std::int32_t count, std::int32_t later_count) {
    PutHead(kBucketPlace, kBits, static_cast<std::size_t>(count));
    gdbm::BucketHead head{};
    head.bits = kBits;
    head.count = later_count;
    Put(later, head);
    Put(gdbm::ElementAt(kBucketPlace, 2 * kSlots), element);
    const gdbm::Orphans orphans = Found();
    EXPECT_EQ(orphans.buckets.size(), 1U);
    return orphans.buckets.empty() ? 0 : orphans.buckets[0].at;
  };
  EXPECT_EQ(found_at(1, 2), kBucketPlace);
  EXPECT_EQ(found_at(2, 1), later);
  EXPECT_EQ(found_at(1, 1), later);
  EXPECT_EQ(found_at(2, 2), later);
}

TEST_F(FindOrphansTest, FreeSpaceOfAHeadLiesInTheFileUnlessTheFileIsCut) {
  const auto buckets = [this](const gdbm::FreeSpace& space) {
    PutBucket(kBucketPlace, 5, kBits);
    Put(kBucketPlace + offsetof(gdbm::BucketHead, free), space);
    return Found().buckets.size();
  };
  EXPECT_EQ(buckets({100, 1024}), 1U);
  EXPECT_EQ(buckets({100, (Offset{1} << 31) - 1}), 1U);
  EXPECT_EQ(buckets({100, Offset{1} << 31}), 0U);
  EXPECT_EQ(buckets({1 << 20, 1024}), 0U);
  EXPECT_EQ(buckets({-1, 1024}), 0U);
}

TEST_F(FindOrphansTest, AnElementWhoseKeyIsNotInTheFileIsNone) {
  gdbm::Element element = Add("key");
  element.data = file_.size();
  Put(kBucketPlace, element);
  EXPECT_TRUE(Found().elements.empty());
}

}  // namespace
}  // namespace kestan_maintenance
