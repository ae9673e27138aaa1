// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/building/bucket_plan.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <vector>

namespace kestan_tests {
namespace {

using kestan::gdbm::BucketPlan;
using kestan::gdbm::Element;
using kestan::gdbm::Hash;
using kestan::gdbm::LargestCapacity;
using kestan::gdbm::PlanBuckets;
using kestan::gdbm::PlannedBucket;
using kestan::gdbm::PrefixOf;
using Elements = kestan::Vector<Element>;

constexpr Hash kLastHash = 0x7fffffff;

// Elements of these hashes, at places that go down.
Elements ElementsOf(const std::vector<Hash>& hashes) {
  Elements elements;
  for (const Hash hash : hashes) {
    Element element{};
    element.hash = static_cast<std::int32_t>(hash);
    element.data = 1000 + hashes.size() - elements.size();
    elements.push_back(element);
  }
  return elements;
}

using Place = std::pair<std::int32_t, std::uint64_t>;

std::vector<Place> PlacesOf(const Elements& elements) {
  std::vector<Place> places;
  for (const Element& element : elements) places.emplace_back(element.hash, element.data);
  return places;
}

std::vector<Hash> SpreadHashes(std::size_t count) {
  std::vector<Hash> hashes;
  std::uint64_t state = 1;
  for (std::size_t i = 0; i < count; ++i) {
    state = state * 6364136223846793005 + 1442695040888963407;
    hashes.push_back(static_cast<Hash>(state >> 33));
  }
  return hashes;
}

// Expects that each element is in one bucket, that none is too full, and that the directory leads
// from each hash to its bucket.
void ExpectValid(const Elements& elements, const BucketPlan& plan) {
  std::size_t next = 0;
  std::uint64_t entry = 0;
  for (const PlannedBucket& bucket : plan.buckets) {
    ASSERT_EQ(bucket.first, next);
    ASSERT_LE(bucket.end - bucket.first, plan.capacity);
    ASSERT_LE(bucket.bits, plan.directory_bits);
    const std::uint64_t entries = std::uint64_t{1} << (plan.directory_bits - bucket.bits);
    ASSERT_EQ(entry % entries, 0u);
    for (std::size_t i = bucket.first; i < bucket.end; ++i) {
      const auto hash = static_cast<Hash>(elements[i].hash);
      ASSERT_EQ(PrefixOf(hash, bucket.bits), entry / entries);
    }
    next = bucket.end;
    entry += entries;
  }
  EXPECT_EQ(next, elements.size());
  EXPECT_EQ(entry, std::uint64_t{1} << plan.directory_bits);
  EXPECT_GE(plan.directory_bytes(), kestan::gdbm::kBlockBytes);
}

BucketPlan Planned(const std::vector<Hash>& hashes, std::uint32_t largest = 512) {
  Elements elements = ElementsOf(hashes);
  SortByHash(&elements);
  BucketPlan plan;
  EXPECT_TRUE(PlanBuckets(elements, largest, &plan));
  ExpectValid(elements, plan);
  return plan;
}

// Hashes anywhere, a few of them often, and many that begin alike.
rc::Gen<std::vector<Hash>> Hashes() {
  const auto hash =
      rc::gen::oneOf(rc::gen::inRange<Hash>(0, kLastHash), rc::gen::inRange<Hash>(0, 3),
                     rc::gen::inRange<Hash>(0x12345600, 0x12345700), rc::gen::just(kLastHash));
  return rc::gen::scale(20, rc::gen::container<std::vector<Hash>>(hash));
}

RC_GTEST_PROP(BucketPlanTest, SortsByHashAndThenByPlace, ()) {
  Elements elements = ElementsOf(*Hashes());
  auto expected = PlacesOf(elements);
  std::sort(expected.begin(), expected.end());
  SortByHash(&elements);
  RC_ASSERT(PlacesOf(elements) == expected);
}

RC_GTEST_PROP(BucketPlanTest, HasOneBucketForEachHash, ()) {
  Planned(*Hashes(), *rc::gen::element<std::uint32_t>(16, 64, 170, 512));
}

TEST(BucketPlanTest, SortsAMillionAndPlansThem) {
  Elements elements = ElementsOf(SpreadHashes(1'000'000));
  auto expected = PlacesOf(elements);
  std::sort(expected.begin(), expected.end());
  SortByHash(&elements);
  EXPECT_TRUE(PlacesOf(elements) == expected);
  BucketPlan plan;
  ASSERT_TRUE(PlanBuckets(elements, 512, &plan));
  ExpectValid(elements, plan);
  const auto bytes = plan.directory_bytes() + plan.buckets.size() * plan.bucket_bytes();
  EXPECT_LT(bytes, 28'500'000u);
}

TEST(BucketPlanTest, OfFewElementsIsOneBucketOfTheirNumber) {
  for (const std::size_t count : {17u, 100u, 511u, 512u}) {
    const BucketPlan plan = Planned(SpreadHashes(count));
    EXPECT_EQ(plan.buckets.size(), 1u) << count;
    EXPECT_EQ(plan.capacity, count);
    EXPECT_EQ(plan.directory_bytes(), 512u);
  }
}

// As gdbm's own buckets: with smaller ones, a file that grows would be split without end.
TEST(BucketPlanTest, HasNoBucketSmallerThanABlockHasRoomFor) {
  for (const std::size_t count : {0u, 1u, 15u}) {
    const BucketPlan plan = Planned(SpreadHashes(count));
    EXPECT_EQ(plan.buckets.size(), 1u) << count;
    EXPECT_LE(plan.bucket_bytes(), 512u);
    EXPECT_GT(plan.bucket_bytes() + sizeof(Element), 512u);
  }
}

TEST(BucketPlanTest, OfManyElementsKeepsToMostlyFullBucketsOfAtMost512) {
  for (const std::size_t count : {513u, 700u, 1500u, 5000u, 20000u, 100000u}) {
    const BucketPlan plan = Planned(SpreadHashes(count), LargestCapacity(count));
    EXPECT_LE(plan.capacity, 512u) << count;
    EXPECT_LT(plan.buckets.size() * plan.bucket_bytes() + plan.directory_bytes(), count * 33u);
  }
}

std::vector<Hash> Same(std::size_t count, Hash hash) {
  std::vector<Hash> hashes(count, hash);
  return hashes;
}

TEST(BucketPlanTest, LargestCapacityGrowsWithTheNumberOfRecordsThatAreExpected) {
  EXPECT_EQ(LargestCapacity(1), 64u);
  EXPECT_EQ(LargestCapacity(100), 64u);
  EXPECT_EQ(LargestCapacity(900), 180u);
  EXPECT_EQ(LargestCapacity(10'000), 512u);
  EXPECT_EQ(LargestCapacity(SIZE_MAX), 512u);
  EXPECT_LE(kestan::gdbm::BucketBytes(LargestCapacity(0)), 4200u);
}

TEST(BucketPlanTest, KeepsToTheLargestCapacityWhereHashesAllowIt) {
  for (const std::uint32_t largest : {16u, 64u, 170u, 512u}) {
    const BucketPlan plan = Planned(SpreadHashes(30'000), largest);
    EXPECT_LE(plan.capacity, largest);
    EXPECT_GE(plan.capacity, largest / 2);
  }
}

TEST(BucketPlanTest, GrowsToHoldAllKeysOfOneHash) {
  EXPECT_EQ(Planned(Same(512, 77)).capacity, 512u);
  for (const std::size_t count : {513u, 2000u, 43000u}) {
    const BucketPlan plan = Planned(Same(count, kLastHash));
    EXPECT_GE(plan.capacity, count);
    EXPECT_LE(plan.bucket_bytes(), std::max<std::size_t>(count * 24 * 5 / 4 + 200, 16384u));
  }
}

TEST(BucketPlanTest, OfTooManyKeysOfOneHashIsNone) {
  const std::size_t most = ((1 << 20) - sizeof(kestan::gdbm::BucketHead)) / sizeof(Element);
  EXPECT_EQ(Planned(Same(most, 5)).capacity, most);
  BucketPlan plan;
  EXPECT_FALSE(PlanBuckets(ElementsOf(Same(most + 1, 5)), 512, &plan));
}

// Splitting them would take a directory of 2^22 entries and more.
TEST(BucketPlanTest, KeepsTheDirectorySmallWhereHashesBeginAlike) {
  std::vector<Hash> hashes;
  for (Hash i = 0; i < 600; ++i) hashes.push_back(0x2aaaa000 + i);
  const BucketPlan plan = Planned(hashes);
  EXPECT_LE(plan.directory_bytes() + plan.buckets.size() * plan.bucket_bytes(), 40'000u);
}

}  // namespace
}  // namespace kestan_tests
