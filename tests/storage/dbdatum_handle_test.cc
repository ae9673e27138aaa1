// SPDX-License-Identifier: GPL-3.0-or-later
// Handles: who is counted, and when a datum goes. A sanitized build also sees a datum that goes
// twice, too early or never.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <utility>

#include <kestan/storage/dbdatum.h>
#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

TEST(DBDatumPtrTest, StartsNull) { EXPECT_EQ(DBDatumPtr().ptr, nullptr); }

TEST(DBDatumPtrTest, CopyingCountsOneHolderMore) {
  const DBDatumPtr first = Counted("value");
  EXPECT_EQ(first.ptr->refs, 1);
  const DBDatumPtr second = first;
  EXPECT_EQ(second.ptr, first.ptr);
  EXPECT_EQ(first.ptr->refs, 2);
}

TEST(DBDatumPtrTest, CopyingANullHandleGivesAnother) {
  const DBDatumPtr null;
  const DBDatumPtr copy = null;
  EXPECT_EQ(copy.ptr, nullptr);
}

TEST(DBDatumPtrTest, AssigningCountsOneHolderMore) {
  const DBDatumPtr first = Counted("value");
  DBDatumPtr second;
  second = first;
  EXPECT_EQ(second.ptr, first.ptr);
  EXPECT_EQ(first.ptr->refs, 2);
}

TEST(DBDatumPtrTest, AssigningGivesUpTheOldDatum) {
  const DBDatumPtr first = Counted("first");
  const DBDatumPtr second = Counted("second");
  DBDatumPtr handle = first;
  handle = second;
  EXPECT_EQ(first.ptr->refs, 1);
  EXPECT_EQ(second.ptr->refs, 2);
}

TEST(DBDatumPtrTest, AssigningToItselfChangesNothing) {
  DBDatumPtr handle = Counted("value");
  const DBDatumPtr& same = handle;
  handle = same;
  ASSERT_NE(handle.ptr, nullptr);
  EXPECT_EQ(handle.ptr->refs, 1);
  EXPECT_EQ(Bytes(*handle.ptr), "value");
}

TEST(DBDatumPtrTest, MovingToItselfChangesNothing) {
  DBDatumPtr handle = Counted("value");
  DBDatumPtr& same = handle;
  handle = std::move(same);
  ASSERT_NE(handle.ptr, nullptr);
  EXPECT_EQ(handle.ptr->refs, 1);
}

TEST(DBDatumPtrTest, AssigningAnotherHandleOfTheSameDatumKeepsTheCount) {
  DBDatumPtr first = Counted("value");
  const DBDatumPtr second = first;
  first = second;
  EXPECT_EQ(first.ptr, second.ptr);
  EXPECT_EQ(first.ptr->refs, 2);
}

TEST(DBDatumPtrTest, MovingKeepsTheCount) {
  DBDatumPtr first = Counted("value");
  DBDatumPtr second = std::move(first);
  EXPECT_EQ(second.ptr->refs, 1);
  DBDatumPtr third = Counted("other");
  third = std::move(second);
  EXPECT_EQ(third.ptr->refs, 1);
  EXPECT_EQ(Bytes(*third.ptr), "value");
}

TEST(DBDatumPtrTest, FreeLeavesTheDatumToItsOtherHolder) {
  DBDatumPtr first = Counted("value");
  const DBDatumPtr second = first;
  first.Free();
  EXPECT_EQ(first.ptr, nullptr);
  EXPECT_EQ(second.ptr->refs, 1);
  EXPECT_EQ(Bytes(*second.ptr), "value");
}

TEST(DBDatumPtrTest, TheLastFreeReleasesBytesAndRecord) {
  DBDatumPtr handle = Counted("value");
  handle.Free();
  EXPECT_EQ(handle.ptr, nullptr);
}

TEST(DBDatumPtrTest, TheLastFreeOfADatumWithoutBytesReleasesTheRecord) {
  DBDatumPtr handle;
  handle.ptr = new DBDatum();
  handle.ptr->refs = 1;
  handle.Free();
  EXPECT_EQ(handle.ptr, nullptr);
}

TEST(DBDatumPtrTest, FreeOfANullHandleDoesNothing) {
  DBDatumPtr handle;
  handle.Free();
  handle.Free();
  EXPECT_EQ(handle.ptr, nullptr);
}

TEST(DBDatumPtrTest, DyingFreesTheHandle) {
  const DBDatumPtr first = Counted("value");
  {
    const DBDatumPtr second = first;
    EXPECT_EQ(first.ptr->refs, 2);
  }
  EXPECT_EQ(first.ptr->refs, 1);
}

TEST(DBDatumPtrTest, AnUncountedDatumIsNotCountedByCopies) {
  DBDatum datum = Datum("value");
  const DBDatumPtr first(&datum);
  const DBDatumPtr second = first;
  DBDatumPtr third;
  third = second;
  EXPECT_EQ(third.ptr, &datum);
  EXPECT_EQ(datum.refs, -1);
}

TEST(DBDatumPtrTest, FreeLowersTheCountOfAnUncountedDatumAndNoMore) {
  DBDatum datum = Datum("value");
  DBDatumPtr(&datum).Free();
  EXPECT_EQ(datum.refs, -2);
  { const DBDatumPtr dies(&datum); }
  EXPECT_EQ(datum.refs, -3);
  EXPECT_EQ(Bytes(datum), "value");
}

TEST(DBDatumPtrTest, ACountOfZeroIsNotCountedEither) {
  DBDatum datum = Datum("value");
  datum.refs = 0;
  DBDatumPtr handle(&datum);
  EXPECT_EQ(datum.refs, 0);
  handle.Free();
  EXPECT_EQ(datum.refs, -1);
  EXPECT_EQ(Bytes(datum), "value");
}

TEST(DBDatumPtrTest, SharingACountedDatumCounts) {
  const DBDatumPtr first = Counted("value");
  const DBDatumPtr second(first.ptr);
  EXPECT_EQ(first.ptr->refs, 2);
}

TEST(DBDatumPtrTest, OrdersAsTheDatumsDo) {
  const std::less<DBDatumPtr> less;
  EXPECT_TRUE(less(Counted("a"), Counted("b")));
  EXPECT_FALSE(less(Counted("b"), Counted("a")));
  EXPECT_TRUE(less(Counted("a"), Counted("\xff")));
}

TEST(DBDatumPtrTest, IsAKeyOfStandardMaps) {
  std::map<DBDatumPtr, int> map;
  map[Counted("b")] = 2;
  map[Counted("a")] = 1;
  map[Counted("b")] = 3;
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(map.begin()->second, 1);
  EXPECT_EQ(map[Counted("b")], 3);
}

}  // namespace
}  // namespace kestan_tests
