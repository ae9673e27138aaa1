// SPDX-License-Identifier: GPL-3.0-or-later
// Which bytes of a gdbm file are read as its structures.
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <climits>
#include <string>
#include <vector>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

TEST(HashOfTest, ItIsGdbmsHash) {
  const kestan_tests::TempDir folder;
  MakeIndex(folder / "index", 20, 1);
  const std::string bytes = ReadFile(folder / "index");
  const FileMap map = MapOf(bytes);
  ASSERT_GT(map.records.size(), 100U);
  for (const Record& record : map.records) {
    gdbm::Element element{};
    std::memcpy(&element, &bytes[record.element], sizeof element);
    EXPECT_EQ(gdbm::HashOf(record.key), static_cast<gdbm::Hash>(element.hash)) << record.key;
  }
}

TEST(PrefixOfTest, ItIsTheFirstOf31Bits) {
  EXPECT_EQ(gdbm::PrefixOf(0x7fffffff, 0), 0U);
  EXPECT_EQ(gdbm::PrefixOf(0x40000000, 1), 1U);
  EXPECT_EQ(gdbm::PrefixOf(0x3fffffff, 1), 0U);
  EXPECT_EQ(gdbm::PrefixOf(0x7ffffffe, 31), 0x7ffffffeU);
}

TEST(BytesTest, HoldsUpToItsLastByteWithoutOverflow) {
  const gdbm::Bytes file("12345678");
  EXPECT_TRUE(file.Holds(0, 8));
  EXPECT_TRUE(file.Holds(8, 0));
  EXPECT_FALSE(file.Holds(1, 8));
  EXPECT_FALSE(file.Holds(9, 0));
  EXPECT_FALSE(file.Holds(1, ~Offset{0}));
  std::uint32_t number = 7;
  EXPECT_TRUE(file.Read(4, &number));
  number = 7;
  EXPECT_FALSE(file.Read(5, &number));
  EXPECT_EQ(number, 7U);
}

class ElementTest : public CraftedFile {
 protected:
  void SetUp() override {
    element_ = Add("a key");
    element_.value_bytes = 3;
    file_ += "val";
  }

  bool IsValid() const { return gdbm::Bytes(file_).IsValid(element_); }
  bool HasKey() const { return gdbm::Bytes(file_).HasKey(element_); }

  gdbm::Element element_{};
};

TEST_F(ElementTest, AKeyAndAValueInTheFileAreValid) { EXPECT_TRUE(IsValid()); }

TEST_F(ElementTest, AValueThatReachesPastTheEndStillHasItsKey) {
  element_.value_bytes = 4;
  EXPECT_FALSE(IsValid());
  EXPECT_TRUE(HasKey());
  element_.value_bytes = INT_MAX;
  EXPECT_FALSE(IsValid());
}

TEST_F(ElementTest, EachNumberMustAgreeWithTheKey) {
  const gdbm::Element good = element_;
  const auto is_refused = [&](auto change) {
    element_ = good;
    change(&element_);
    return !HasKey();
  };
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { ++element->hash; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { element->hash = -1; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { element->key_start[3] = 'x'; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { --element->data; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { element->data = ~Offset{0}; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { --element->key_bytes; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { element->key_bytes = -1; }));
  EXPECT_TRUE(is_refused([](gdbm::Element* element) { element->value_bytes = -1; }));
}

TEST_F(ElementTest, KeysShorterThanItsFourFirstBytesAreComparedAsFarAsTheyGo) {
  element_ = Add("ab");
  element_.key_start[2] = 'x';
  EXPECT_TRUE(HasKey());
  element_.key_start[1] = 'x';
  EXPECT_FALSE(HasKey());
}

TEST(IsHeadTest, EachNumberHasItsLimits) {
  const gdbm::Shape shape{512, 16};
  const auto is_head = [&](std::int32_t free_count, std::int32_t bits, std::int32_t count) {
    gdbm::BucketHead head{};
    head.free_count = free_count;
    head.bits = bits;
    head.count = count;
    return gdbm::IsHead(head, shape);
  };
  EXPECT_TRUE(is_head(0, 0, 0));
  EXPECT_TRUE(is_head(6, 31, 16));
  EXPECT_FALSE(is_head(7, 0, 0));
  EXPECT_FALSE(is_head(-1, 0, 0));
  EXPECT_FALSE(is_head(0, 32, 0));
  EXPECT_FALSE(is_head(0, -1, 0));
  EXPECT_FALSE(is_head(0, 0, 17));
  EXPECT_FALSE(is_head(0, 0, -1));
}

TEST(BelongsToTest, ABucketHasAllEntriesThatBeginWithItsBitsAndNoOthers) {
  gdbm::Header header{};
  header.directory_bits = kBits;
  gdbm::BucketHead head{};
  head.bits = kBits - 2;
  EXPECT_TRUE(gdbm::BelongsTo({4, 8, 0}, header, head));
  EXPECT_FALSE(gdbm::BelongsTo({4, 7, 0}, header, head));
  EXPECT_FALSE(gdbm::BelongsTo({4, 9, 0}, header, head));
  EXPECT_FALSE(gdbm::BelongsTo({5, 9, 0}, header, head));
  head.bits = kBits;
  EXPECT_TRUE(gdbm::BelongsTo({5, 6, 0}, header, head));
  head.bits = kBits + 1;
  EXPECT_FALSE(gdbm::BelongsTo({5, 6, 0}, header, head));
}

using ForEachRunTest = CraftedFile;

TEST_F(ForEachRunTest, NeighboursWithTheSameBucketAreOneRun) {
  PutHeader();
  PutEntries({1, 2, 4, kEntries - 1}, kBucketPlace);
  gdbm::Header header{};
  const gdbm::Bytes bytes(file_);
  ASSERT_TRUE(gdbm::ReadHeader(bytes, &header, &shape_));
  std::vector<std::vector<std::uint64_t>> runs;
  gdbm::ForEachRun(bytes, header, [&](const gdbm::DirectoryRun& run) {
    runs.push_back({run.first, run.end, run.bucket});
  });
  const std::vector<std::vector<std::uint64_t>> expected{{0, 1, 0},
                                                         {1, 3, kBucketPlace},
                                                         {3, 4, 0},
                                                         {4, 5, kBucketPlace},
                                                         {5, kEntries - 1, 0},
                                                         {kEntries - 1, kEntries, kBucketPlace}};
  EXPECT_EQ(runs, expected);
}

TEST_F(ForEachRunTest, EntriesPastTheEndLeadToNoBucket) {
  file_.assign(16 + 8 * 3 + 7, '\1');
  std::vector<std::uint32_t> ends;
  gdbm::ForEachRun(gdbm::Bytes(file_), 16, 3, [&](const gdbm::DirectoryRun& run) {
    ends.push_back(run.end);
    EXPECT_EQ(run.bucket != 0, run.first == 0);
  });
  EXPECT_EQ(ends, std::vector<std::uint32_t>({3, 8}));
}

class ReadBucketTest : public CraftedFile {
 protected:
  gdbm::Bucket BucketAt(Offset at) const {
    gdbm::Bucket bucket;
    bucket.damaged = {1, 2};  // of the bucket before
    gdbm::ReadBucket(gdbm::Bytes(file_), shape_, at, &bucket);
    return bucket;
  }
};

TEST_F(ReadBucketTest, ValidAndDamagedElementsAreListedSeparately) {
  PutHead(kBucketPlace, kBits, 3);
  auto elements = AddKeys(3, 5, kBits);
  ++elements[2].data;
  for (std::uint32_t i = 0; i < 3; ++i) Put(gdbm::ElementAt(kBucketPlace, 2 * i), elements[i]);
  const gdbm::Bucket bucket = BucketAt(kBucketPlace);
  EXPECT_EQ(bucket.valid.size(), 2U);
  EXPECT_EQ(bucket.damaged.size(), 1U);
  EXPECT_FALSE(bucket.IsIntact());
  EXPECT_TRUE(bucket.IsComplete());
}

TEST_F(ReadBucketTest, ABucketWithElementsOfOtherHashesHasNoHead) {
  PutHead(kBucketPlace, kBits, 2);
  Put(gdbm::ElementAt(kBucketPlace, 0), AddKeys(1, 5, kBits).front());
  Put(gdbm::ElementAt(kBucketPlace, 1), AddKeys(1, 6, kBits).front());
  EXPECT_FALSE(BucketAt(kBucketPlace).has_head);
}

TEST_F(ReadBucketTest, DamagedElementsOfOtherHashesAreNoise) {
  PutHead(kBucketPlace, kBits, 1);
  Put(gdbm::ElementAt(kBucketPlace, 0), AddKeys(1, 5, kBits).front());
  gdbm::Element noise = AddKeys(1, 6, kBits).front();
  ++noise.data;
  Put(gdbm::ElementAt(kBucketPlace, 1), noise);
  EXPECT_TRUE(BucketAt(kBucketPlace).IsIntact());
}

TEST_F(ReadBucketTest, TheFreeSpaceThatTheHeadCountsIsRead) {
  gdbm::BucketHead head{};
  head.free_count = 2;
  head.free[0] = {7, 512};
  head.free[1] = {9, 1024};
  head.free[2] = {11, 2048};
  Put(kBucketPlace, head);
  const gdbm::Bucket bucket = BucketAt(kBucketPlace);
  ASSERT_EQ(bucket.free.size(), 2U);
  EXPECT_EQ(bucket.free[1].bytes, 9);
  EXPECT_EQ(bucket.free[1].at, 1024U);
}

TEST_F(ReadBucketTest, ABucketThatTheEndOfTheFileCutsHasTheElementsBeforeIt) {
  const gdbm::Element element = Add("key");
  const Offset at = file_.size();
  file_.resize(file_.size() + shape_.bucket_bytes);
  PutHead(at, 0, 2);
  Put(gdbm::ElementAt(at, 0), element);
  Put(gdbm::ElementAt(at, 1), element);
  file_.resize(static_cast<std::size_t>(gdbm::ElementAt(at, 2)) - 1);
  EXPECT_EQ(BucketAt(at).valid.size(), 1U);
  file_.resize(static_cast<std::size_t>(gdbm::ElementAt(at, 0)) - 1);
  EXPECT_FALSE(BucketAt(at).has_head);
}

}  // namespace
}  // namespace kestan_maintenance
