// SPDX-License-Identifier: GPL-3.0-or-later
// Reading records through the cache.
#include <climits>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

using DatabaseGetTest = DatabaseTest;

TEST_F(DatabaseGetTest, AnAbsentKeyIsGdbmsItemNotFound) {
  DBDatumPtr value;
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Get(&value, Datum("key")), GDBM_ITEM_NOT_FOUND); });
  EXPECT_EQ(value.ptr, nullptr);
  EXPECT_EQ(printed, "");
}

TEST_F(DatabaseGetTest, AnAbsentKeyIsAskedForEachTime) {
  GdbmWatch gdbm;
  EXPECT_EQ(Get("key"), "none");
  EXPECT_EQ(Get("key"), "none");
  EXPECT_EQ(gdbm.Lines(), (Lines{"fetch key", "fetch key"}));
}

// No bytes of the key are looked at: the cache is empty.
TEST_F(DatabaseGetTest, AKeyOfMoreBytesThanGdbmCanCountIsAbsent) {
  DBDatum key = Datum("key");
  key.size = 1u + INT_MAX;
  DBDatumPtr value;
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Get(&value, key), GDBM_ITEM_NOT_FOUND);
  EXPECT_TRUE(gdbm.Lines().empty());
}

TEST_F(DatabaseGetTest, FailureGivesUpWhatTheHandleHeld) {
  DBDatumPtr value = Counted("old");
  const DBDatumPtr old = value;
  EXPECT_EQ(store_.Get(&value, Datum("key")), GDBM_ITEM_NOT_FOUND);
  EXPECT_EQ(value.ptr, nullptr);
  EXPECT_EQ(old.ptr->refs, 1);
}

TEST_F(DatabaseGetTest, GdbmsOtherErrorsAreReturnedToo) {
  PlantAndReopen({{"key", "value"}});
  GdbmWatch gdbm;
  gdbm.Fail("fetch", 1, GDBM_FILE_READ_ERROR);
  DBDatumPtr value;
  EXPECT_EQ(store_.Get(&value, Datum("key")), GDBM_FILE_READ_ERROR);
  EXPECT_EQ(value.ptr, nullptr);
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseGetTest, ReadsARecordOnce) {
  PlantAndReopen({{"key", "value"}});
  GdbmWatch gdbm;
  EXPECT_EQ(Get("key"), "value");
  EXPECT_EQ(Get("key"), "value");
  EXPECT_EQ(gdbm.Lines(), (Lines{"fetch key"}));
}

TEST_F(DatabaseGetTest, TheValueIsSharedWithTheCache) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr first = Held("key");
  EXPECT_EQ(first.ptr->refs, 2);
  const DBDatumPtr second = Held("key");
  EXPECT_EQ(second.ptr, first.ptr);
  EXPECT_EQ(first.ptr->refs, 3);
}

TEST_F(DatabaseGetTest, TheValueStartsClean) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr value = Held("key");
  EXPECT_FALSE(value.ptr->dirty);
  EXPECT_EQ(value.ptr->code, 0u);
  EXPECT_EQ(value.ptr->size, 5u);
}

TEST_F(DatabaseGetTest, ReplacesWhatTheHandleHeld) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}});
  DBDatumPtr value;
  store_.Get(&value, Datum("a"));
  const DBDatumPtr first = value;
  EXPECT_EQ(store_.Get(&value, Datum("b")), 0);
  EXPECT_EQ(Bytes(*value.ptr), "2");
  EXPECT_EQ(first.ptr->refs, 2);
}

TEST_F(DatabaseGetTest, TheKeyMayBeWhatTheHandleHolds) {
  PlantAndReopen({{"a", "b"}, {"b", "c"}});
  DBDatumPtr handle = Held("a");
  EXPECT_EQ(store_.Get(&handle, *handle.ptr), 0);
  EXPECT_EQ(Bytes(*handle.ptr), "c");
}

TEST_F(DatabaseGetTest, TheKeyMayBeWhatTheHandleAloneHolds) {
  PlantAndReopen({{"b", "c"}});
  DBDatumPtr handle = Counted("b");
  EXPECT_EQ(store_.Get(&handle, *handle.ptr), 0);
  EXPECT_EQ(Bytes(*handle.ptr), "c");
  handle = Counted("absent");
  EXPECT_EQ(store_.Get(&handle, *handle.ptr), GDBM_ITEM_NOT_FOUND);
  EXPECT_EQ(handle.ptr, nullptr);
}

TEST_F(DatabaseGetTest, CopiesTheKey) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr key = Counted("key");
  DBDatumPtr value;
  EXPECT_EQ(store_.Get(&value, *key.ptr), 0);
  EXPECT_EQ(key.ptr->refs, 1);
  key.ptr->data[0] = 'X';
  EXPECT_EQ(Held("key").ptr, value.ptr);
}

TEST_F(DatabaseGetTest, ACountedKeyHasItsCountAgain) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr key = Counted("key");
  const DBDatumPtr absent = Counted("absent");
  DBDatumPtr value;
  EXPECT_EQ(store_.Get(&value, *absent.ptr), GDBM_ITEM_NOT_FOUND);
  EXPECT_EQ(absent.ptr->refs, 1);
  for (int i = 0; i < 2; ++i) {  // from the file, and from the cache
    EXPECT_EQ(store_.Get(&value, *key.ptr), 0);
    EXPECT_EQ(key.ptr->refs, 1);
  }
}

TEST_F(DatabaseGetTest, LeavesTheCountOfAnUncountedKey) {
  PlantAndReopen({{"key", "value"}});
  const DBDatum key = Datum("key");
  DBDatumPtr value;
  store_.Get(&value, key);
  store_.Get(&value, key);
  EXPECT_LT(key.refs, 1);
}

TEST_F(DatabaseGetTest, TakesKeysByTheirLength) {
  PlantAndReopen({{"key", "short"}, {std::string("key\0more", 8), "long"}});
  EXPECT_EQ(Get("key\0more"sv), "long");
  EXPECT_EQ(Get("key"), "short");
  EXPECT_EQ(Get("key\0"sv), "none");
}

TEST_F(DatabaseGetTest, AnEmptyValueIsNotAbsent) {
  PlantAndReopen({{"key", ""}});
  const DBDatumPtr value = Held("key");
  ASSERT_NE(value.ptr, nullptr);
  EXPECT_EQ(value.ptr->size, 0u);
}

TEST_F(DatabaseGetTest, TheEmptyKeyIsAKey) {
  EXPECT_EQ(Get(""), "none");
  EXPECT_EQ(Put("", "value"), 0);
  EXPECT_EQ(store_.Flush(), 0);
  DBDatumPtr value;
  EXPECT_EQ(store_.Get(&value, DBDatum()), 0);
  EXPECT_EQ(Bytes(*value.ptr), "value");
}

TEST_F(DatabaseGetTest, ReadsAgainWhatAFlushDropped) {
  PlantAndReopen({{"key", "value"}});
  EXPECT_EQ(Get("key"), "value");
  store_.Flush();
  GdbmWatch gdbm;
  EXPECT_EQ(Get("key"), "value");
  EXPECT_EQ(gdbm.Count("fetch"), 1u);
}

TEST_F(DatabaseGetTest, BinaryValuesComeBackWhole) {
  std::string every_byte;
  for (int byte = 0; byte < 256; ++byte) every_byte += static_cast<char>(byte);
  PlantAndReopen({{"key", every_byte}});
  EXPECT_EQ(Get("key"), every_byte);
}

}  // namespace
}  // namespace kestan_tests
