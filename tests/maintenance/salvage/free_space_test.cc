// SPDX-License-Identifier: GPL-3.0-or-later
// What lies in free space has been removed: whether a salvage finds gdbm's lists of it.
#include <kestan/maintenance/salvage/salvage.h>

#include <climits>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

// A file with a record that no bucket has: where it does not lie in free space, it may be old.
class FreeSpaceTest : public CraftedFile {
 protected:
  void PutRecord(std::uint32_t magic = gdbm::kMagic) {
    PutHeader(512, magic);
    PutHead(kOtherPlace, kBits, 0);
    PutEntries({5}, kOtherPlace);
    record_ = Add("record");
    record_.value_bytes = 1;  // its element looks like no free space, either
    file_ += "v";
    Put(kBucketPlace, record_);
  }

  static constexpr Offset kList = sizeof(gdbm::Header);

  void PutList(Offset at, std::int32_t count, const gdbm::FreeSpace& space, Offset next = 0) {
    Put(at, gdbm::FreeList{count, count, next});
    Put(at + sizeof(gdbm::FreeList), space);
  }

  std::size_t CountFound() const {
    const kestan_tests::TempDir folder;
    WriteFile(folder / "file", file_);
    return Salvaged(folder / "file").size();
  }

  gdbm::Element record_{};
};

TEST_F(FreeSpaceTest, ARecordWithoutABucketIsFound) {
  PutRecord();
  EXPECT_EQ(CountFound(), 1U);
}

TEST_F(FreeSpaceTest, ARecordThatLiesInItIsNot) {
  PutRecord();
  PutList(kList, 1, {3, record_.data});
  EXPECT_EQ(CountFound(), 0U);
  PutList(kList, 1, {6, record_.data - 5});
  EXPECT_EQ(CountFound(), 0U);
}

TEST_F(FreeSpaceTest, ARecordThatReachesIntoItIsNot) {
  PutRecord();
  PutList(kList, 1, {1, record_.data + 5});
  EXPECT_EQ(CountFound(), 0U);
}

TEST_F(FreeSpaceTest, ARecordRightBesideItIsFound) {
  PutRecord();
  file_ += "beyond";
  PutList(kList, 1, {6, record_.data + 7});
  EXPECT_EQ(CountFound(), 1U);
  PutList(kList, 1, {5, record_.data - 5});
  EXPECT_EQ(CountFound(), 1U);
}

TEST_F(FreeSpaceTest, OfNoBytesOrPastTheEndCountsForNothing) {
  PutRecord();
  for (const std::int32_t bytes : {0, -1, INT_MIN, 8}) {
    PutList(kList, 1, {bytes, record_.data});
    EXPECT_EQ(CountFound(), 1U) << bytes;
  }
}

TEST_F(FreeSpaceTest, IsListedAfterTheExtensionInTheExtendedFormat) {
  PutRecord(gdbm::kExtendedMagic);
  PutList(kList + gdbm::kExtensionBytes, 1, {6, record_.data});
  EXPECT_EQ(CountFound(), 0U);
  PutList(kList + gdbm::kExtensionBytes, 0, {6, record_.data});
  EXPECT_EQ(CountFound(), 1U);
}

TEST_F(FreeSpaceTest, EveryElementOfAListCounts) {
  PutRecord();
  PutList(kList, 2, {1, 7000});
  Put(kList + sizeof(gdbm::FreeList) + sizeof(gdbm::FreeSpace), gdbm::FreeSpace{6, record_.data});
  EXPECT_EQ(CountFound(), 0U);
}

TEST_F(FreeSpaceTest, IsListedInFurtherListsToo) {
  PutRecord();
  constexpr Offset kFurther = 6144;
  PutList(kList, 1, {1, 7000}, kFurther);
  PutList(kFurther, 1, {6, record_.data});
  EXPECT_EQ(CountFound(), 0U);
}

TEST_F(FreeSpaceTest, CyclicListsEnd) {
  PutRecord();
  PutList(kList, 1, {1, 7000}, kList);
  EXPECT_EQ(CountFound(), 1U);
}

TEST_F(FreeSpaceTest, DanglingListsEnd) {
  PutRecord();
  for (const Offset next : {file_.size(), file_.size() - 1, ~std::size_t{0}}) {
    PutList(kList, 1, {1, 7000}, next);
    EXPECT_EQ(CountFound(), 1U);
  }
}

TEST_F(FreeSpaceTest, AListEndsWithTheFile) {
  PutRecord();
  PutList(kList, INT_MAX, {1, 7000});
  EXPECT_EQ(CountFound(), 1U);
}

// The list is gone through once and a half before the bytes of it are more than those of the file.
TEST_F(FreeSpaceTest, AListThatIsTooLongEndsInItsNextRound) {
  PutRecord();
  PutList(kList, 300, {1, 7000}, kList);
  EXPECT_EQ(CountFound(), 1U);
}

}  // namespace
}  // namespace kestan_maintenance
