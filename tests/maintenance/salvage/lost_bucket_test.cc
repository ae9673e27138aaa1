// SPDX-License-Identifier: GPL-3.0-or-later
// Which bytes of a file without a directory are recognised as a bucket.
#include <gtest/gtest.h>
#include <kestan/maintenance/salvage/bucket_map.h>

#include <cstring>
#include <string>

namespace kestan::gdbm {
namespace {

constexpr Offset kBucketAt = 512;

// A file of a lost bucket and of the records that its elements lead to.
class LostBucketTest : public testing::Test {
 protected:
  // Gives the bucket another element, and the file its record.
  void Add(const std::string& key, const std::string& value) {
    Element element{static_cast<std::int32_t>(HashOf(key)), {}, bytes_.size(), 0, 0};
    key.copy(element.key_start.data(), element.key_start.size());
    element.key_bytes = static_cast<std::int32_t>(key.size());
    element.value_bytes = static_cast<std::int32_t>(value.size());
    Write(ElementAt(kBucketAt, static_cast<std::uint32_t>(head_.count++)), element);
    bytes_ += key + value;
  }

  // Adds `count` elements that a bucket of one bit can have.
  void AddAlike(int count) {
    for (int number = 0; count > 0; ++number) {
      const std::string key = "key " + std::to_string(number);
      if (PrefixOf(HashOf(key), 1) != 0) continue;
      Add(key, "value");
      --count;
    }
  }

  // Calls `visit` with the map of the file.
  template <typename Visit>
  void VisitMap(Visit visit) {
    Write(kBucketAt, head_);
    const Bytes file(bytes_);
    visit(BucketMap(file));
  }

  template <typename Structure>
  void Write(Offset at, const Structure& structure) {
    std::memcpy(&bytes_.at(static_cast<std::size_t>(at)), &structure, sizeof structure);
  }

  BucketHead head_{};
  // Elements of nothing but set bits are not used.
  std::string bytes_ = std::string(kBucketAt, '\0') + std::string(Shape().bucket_bytes, '\xff');
};

TEST_F(LostBucketTest, ALostBucketIsFound) {
  AddAlike(5);
  VisitMap([](const BucketMap& map) {
    ASSERT_EQ(map.orphans().size(), 1U);
    EXPECT_EQ(map.orphans().front().at, kBucketAt);
    EXPECT_TRUE(map.orphans().front().is_intact);
    EXPECT_TRUE(map.orphan_elements().empty());
  });
}

// The first element has a key of 1 byte and a value of 5. Where these sizes are taken for a head, a
// bucket of 1 bit and 5 elements lacks nothing, while the real one lacks a record.
TEST_F(LostBucketTest, TheSizesOfARecordAreNoHead) {
  Add("k", "12345");
  bytes_[bytes_.size() - 6] = '?';
  AddAlike(5);
  VisitMap([](const BucketMap& map) {
    ASSERT_EQ(map.orphans().size(), 1U);
    EXPECT_EQ(map.orphans().front().at, kBucketAt);
    EXPECT_EQ(map.orphans().front().bits, 0U);
  });
}

TEST_F(LostBucketTest, ABucketMayKnowOfSpacePastTheEndOfACutFile) {
  AddAlike(5);
  head_.free.back() = {static_cast<std::int32_t>(bytes_.size()), (Offset{1} << 31) - 1};
  VisitMap([](const BucketMap& map) { EXPECT_EQ(map.orphans().size(), 1U); });
}

TEST_F(LostBucketTest, NoBucketKnowsOfSpaceFarPastTheFile) {
  AddAlike(5);
  head_.free.back().at = Offset{1} << 31;
  VisitMap([](const BucketMap& map) {
    EXPECT_TRUE(map.orphans().empty());
    EXPECT_EQ(map.orphan_elements().size(), 5U);
  });
}

TEST_F(LostBucketTest, NoBucketKnowsOfSpaceThatIsLargerThanTheFile) {
  AddAlike(5);
  for (const std::int32_t bytes : {static_cast<std::int32_t>(bytes_.size()) + 1, -1}) {
    head_.free.back().bytes = bytes;
    VisitMap([](const BucketMap& map) { EXPECT_TRUE(map.orphans().empty()); });
  }
}

}  // namespace
}  // namespace kestan::gdbm
