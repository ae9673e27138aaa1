// SPDX-License-Identifier: GPL-3.0-or-later
// Which elements lie in bytes that are known to be in use or free.
#include <kestan/maintenance/salvage/used_space.h>

#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

class UsedSpaceTest : public CraftedFile {
 protected:
  // Returns whether `bytes` bytes at `at` lie in what was added.
  bool Overlaps(Offset at, std::int32_t key_bytes, std::int32_t value_bytes = 0) const {
    return space_.Overlaps({0, {}, at, key_bytes, value_bytes});
  }

  // Adds the first byte of the file, and makes the space ready.
  void Finish() {
    space_.Add(0, 1);
    space_.Merge();
  }

  gdbm::Bytes bytes_{file_};
  gdbm::UsedSpace space_{bytes_};
};

TEST_F(UsedSpaceTest, ASpanOverlapsWhatSharesAByteWithIt) {
  space_.Add(100, 10);
  Finish();
  EXPECT_FALSE(Overlaps(95, 5));
  EXPECT_TRUE(Overlaps(95, 6));
  EXPECT_TRUE(Overlaps(95, 5, 1));
  EXPECT_TRUE(Overlaps(109, 1));
  EXPECT_FALSE(Overlaps(110, 1));
  EXPECT_TRUE(Overlaps(1, 5000, 1));
}

TEST_F(UsedSpaceTest, SpansAreMergedInAnyOrder) {
  space_.Add(300, 50);
  space_.Add(100, 200);
  space_.Add(150, 10);
  space_.Add(500, 10);
  Finish();
  EXPECT_TRUE(Overlaps(200, 1));
  EXPECT_TRUE(Overlaps(349, 1));
  EXPECT_FALSE(Overlaps(350, 150));
  EXPECT_TRUE(Overlaps(350, 151));
}

TEST_F(UsedSpaceTest, WhatReachesPastTheEndOfTheFileDoesNotCount) {
  space_.Add(100, file_.size());
  space_.Add(200, 0);
  space_.Add(file_.size() - 10, 10);
  Finish();
  EXPECT_FALSE(Overlaps(100, 1));
  EXPECT_FALSE(Overlaps(200, 1));
  EXPECT_TRUE(Overlaps(file_.size() - 1, 1));
}

TEST_F(UsedSpaceTest, OfABucketAlsoThePartBeforeTheEndCounts) {
  space_.AddBucket(file_.size() - 10, 512);
  Finish();
  EXPECT_FALSE(Overlaps(file_.size() - 11, 1));
  EXPECT_TRUE(Overlaps(file_.size() - 10, 1));
}

TEST_F(UsedSpaceTest, FreeSpaceOfABucketCountsWhereItHasASize) {
  gdbm::Bucket bucket;
  bucket.free = {{10, 100}, {0, 200}, {-1, 300}};
  space_.AddFree(bucket);
  Finish();
  EXPECT_TRUE(Overlaps(109, 1));
  EXPECT_FALSE(Overlaps(200, 1));
  EXPECT_FALSE(Overlaps(300, 1));
}

TEST_F(UsedSpaceTest, TheHeadersListOfFreeSpaceFollowsTheHeaderAndItsExtension) {
  for (const std::uint32_t magic : {gdbm::kMagic, gdbm::kExtendedMagic}) {
    file_.assign(8192, '\0');
    gdbm::Header header{};
    header.magic = magic;
    const Offset list = sizeof header + (magic == gdbm::kExtendedMagic ? gdbm::kExtensionBytes : 0);
    Put(list, gdbm::FreeList{1, 1, 4096});
    Put(list + sizeof(gdbm::FreeList), gdbm::FreeSpace{10, 1000});
    Put(4096, gdbm::FreeList{1, 1, 4096});  // leads to itself
    Put(4096 + sizeof(gdbm::FreeList), gdbm::FreeSpace{10, 2000});
    const gdbm::Bytes bytes(file_);
    gdbm::UsedSpace space(bytes);
    space.AddFreeLists(header);
    space.Add(0, 1);
    space.Merge();
    EXPECT_TRUE(space.Overlaps({0, {}, 1009, 1, 0})) << magic;
    EXPECT_TRUE(space.Overlaps({0, {}, 2009, 1, 0})) << magic;
    EXPECT_FALSE(space.Overlaps({0, {}, 1010, 990, 0})) << magic;
  }
}

}  // namespace
}  // namespace kestan_maintenance
