// SPDX-License-Identifier: GPL-3.0-or-later
// Datums that the library makes itself.
#include <kestan/storage/owned_datum.h>

#include <gtest/gtest.h>

#include "tests/support/counted.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

void ExpectFresh(const DBDatum& datum) {
  EXPECT_EQ(datum.refs, 1);
  EXPECT_EQ(datum.code, 0u);
  EXPECT_FALSE(datum.dirty);
}

TEST(OwnedDatumTest, AdoptingTakesTheBytesAsTheyAre) {
  char* const bytes = MallocCopy("value");
  const DBDatumPtr handle = kestan::AdoptDatum(bytes, 5);
  EXPECT_EQ(handle.ptr->data, bytes);
  EXPECT_EQ(handle.ptr->size, 5u);
  ExpectFresh(*handle.ptr);
}

TEST(OwnedDatumTest, CopyingBytesMakesMemoryOfItsOwn) {
  const std::string original = "value";
  char* const copy = kestan::CopyBytes(original.data(), 5);
  EXPECT_NE(copy, original.data());
  EXPECT_EQ(std::string(copy, 5), original);
  std::free(copy);
}

TEST(OwnedDatumTest, CopyingNoBytesIsNotNull) {
  char* const copy = kestan::CopyBytes(nullptr, 0);
  EXPECT_NE(copy, nullptr);
  std::free(copy);
}

TEST(OwnedDatumTest, ACopyIsCleanAndUncodedWhateverTheOriginalIs) {
  DBDatum original = Datum("value");
  original.dirty = true;
  original.code = 7;
  const DBDatumPtr copy = kestan::CopyDatum(original);
  EXPECT_EQ(Bytes(*copy.ptr), "value");
  EXPECT_NE(copy.ptr->data, original.data);
  EXPECT_EQ(original.refs, -1);
  ExpectFresh(*copy.ptr);
}

TEST(OwnedDatumTest, ACopyOfNothingIsEmptyAndHasMemory) {
  const DBDatumPtr copy = kestan::CopyDatum(DBDatum());
  EXPECT_EQ(copy.ptr->size, 0u);
  EXPECT_NE(copy.ptr->data, nullptr);
  ExpectFresh(*copy.ptr);
}

}  // namespace
}  // namespace kestan_tests
