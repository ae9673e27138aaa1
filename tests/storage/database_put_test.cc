// SPDX-License-Identifier: GPL-3.0-or-later
// Storing and deleting records: at once in the file, and what the cache holds afterwards.
#include <climits>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_view_literals;

using DatabasePutTest = DatabaseTest;
using DatabaseDelTest = DatabaseTest;

TEST_F(DatabasePutTest, WritesTheFileAtOnce) {
  GdbmWatch gdbm;
  EXPECT_EQ(Put("key", "value"), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key"}));
  EXPECT_EQ(gdbm.Calls().front().value, "value");
}

TEST_F(DatabasePutTest, ReachesTheFileWithASync) {
  Put("key", "value");
  store_.Sync();
  EXPECT_EQ(InFile(), (Records{{"key", "value"}}));
}

TEST_F(DatabasePutTest, ReplacesARecord) {
  EXPECT_EQ(Put("key", "value"), 0);
  EXPECT_EQ(Put("key", "longer value"), 0);
  EXPECT_EQ(Get("key"), "longer value");
  EXPECT_EQ(Stored(), (Records{{"key", "longer value"}}));
}

TEST_F(DatabasePutTest, ReplacesARecordThatWasNotCached) {
  PlantAndReopen({{"key", "old"}});
  GdbmWatch gdbm;
  EXPECT_EQ(Put("key", "new"), 0);
  EXPECT_EQ(Get("key"), "new");
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key"}));
}

TEST_F(DatabasePutTest, TheNewValueIsReadFromTheCache) {
  Put("key", "value");
  GdbmWatch gdbm;
  EXPECT_EQ(Get("key"), "value");
  EXPECT_TRUE(gdbm.Lines().empty());
}

TEST_F(DatabasePutTest, IsNotWrittenAgainByAFlush) {
  Put("key", "value");
  GdbmWatch gdbm;
  store_.Flush();
  EXPECT_EQ(gdbm.Lines(), (Lines{"sync"}));
}

TEST_F(DatabasePutTest, CopiesBytesThatAreNotCounted) {
  std::string key = "key";
  std::string value = "value";
  EXPECT_EQ(Put(key, value), 0);
  key[0] = value[0] = 'X';
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabasePutTest, ACopiedValueIsHeldByTheCacheAlone) {
  Put("key", "value");
  const DBDatumPtr value = Held("key");
  EXPECT_EQ(value.ptr->refs, 2);
  EXPECT_FALSE(value.ptr->dirty);
}

TEST_F(DatabasePutTest, CopiesACountedKeyOfAnUncountedValue) {
  const DBDatumPtr key = Counted("key");
  EXPECT_EQ(store_.Put(*key.ptr, Datum("value")), 0);
  EXPECT_EQ(key.ptr->refs, 1);
}

TEST_F(DatabasePutTest, ACountedKeyThatIsCachedHasItsCountAgain) {
  const DBDatumPtr key = Counted("key");
  const DBDatumPtr value = Counted("value");
  Put("key", "old");
  EXPECT_EQ(store_.Put(*key.ptr, Datum("new")), 0);
  EXPECT_EQ(key.ptr->refs, 1);
  EXPECT_EQ(store_.Put(*key.ptr, *value.ptr), 0);
  EXPECT_EQ(key.ptr->refs, 1);
}

TEST_F(DatabasePutTest, SharesACountedValue) {
  const DBDatumPtr value = Counted("value");
  EXPECT_EQ(store_.Put(Datum("key"), *value.ptr), 0);
  EXPECT_EQ(value.ptr->refs, 2);
  EXPECT_EQ(Held("key").ptr, value.ptr);
}

TEST_F(DatabasePutTest, SharesTheCountedKeyOfACountedValue) {
  const DBDatumPtr key = Counted("key");
  const DBDatumPtr value = Counted("value");
  EXPECT_EQ(store_.Put(*key.ptr, *value.ptr), 0);
  EXPECT_EQ(key.ptr->refs, 2);
  EXPECT_EQ(value.ptr->refs, 2);
  EXPECT_EQ(Stored(), (Records{{"key", "value"}}));
}

TEST_F(DatabasePutTest, ASharedKeyIsGivenUpWithItsRecord) {
  const DBDatumPtr key = Counted("key");
  DBDatumPtr value = Counted("value");
  store_.Put(*key.ptr, *value.ptr);
  value.Free();
  store_.Flush();
  EXPECT_EQ(key.ptr->refs, 1);
}

TEST_F(DatabasePutTest, ASharedValueThatIsChangedIsFlushed) {
  const DBDatumPtr value = Counted("value");
  store_.Put(Datum("key"), *value.ptr);
  Change(value, "VALUE");
  EXPECT_EQ(Get("key"), "VALUE");
  EXPECT_EQ(Stored().at("key"), "VALUE");
}

TEST_F(DatabasePutTest, ACountedValueNewToTheCacheStaysDirty) {
  const DBDatumPtr value = Counted("value");
  value.ptr->dirty = true;
  store_.Put(Datum("key"), *value.ptr);
  EXPECT_TRUE(value.ptr->dirty);
  GdbmWatch gdbm;
  store_.Flush();
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync"}));
}

TEST_F(DatabasePutTest, HoldersOfTheCachedValueSeeTheNewBytes) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr held = Held("key");
  EXPECT_EQ(Put("key", "something longer"), 0);
  EXPECT_EQ(Bytes(*held.ptr), "something longer");
  EXPECT_EQ(held.ptr->size, 16u);
  EXPECT_EQ(held.ptr->refs, 2);
  EXPECT_EQ(Held("key").ptr, held.ptr);
}

TEST_F(DatabasePutTest, ANewValueClearsTheMarkOfAChange) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr held = Held("key");
  Change(held, "VALUE");
  Put("key", "new");
  EXPECT_FALSE(held.ptr->dirty);
  GdbmWatch gdbm;
  store_.Flush();
  EXPECT_EQ(gdbm.Lines(), (Lines{"sync"}));
}

TEST_F(DatabasePutTest, ACountedValueTakesThePlaceOfTheCachedOne) {
  PlantAndReopen({{"key", "old"}});
  const DBDatumPtr old = Held("key");
  const DBDatumPtr value = Counted("new");
  value.ptr->dirty = true;
  EXPECT_EQ(store_.Put(Datum("key"), *value.ptr), 0);
  EXPECT_FALSE(value.ptr->dirty);
  EXPECT_EQ(value.ptr->refs, 2);
  EXPECT_EQ(Held("key").ptr, value.ptr);
  EXPECT_EQ(Bytes(*old.ptr), "old");
  EXPECT_EQ(old.ptr->refs, 1);
}

TEST_F(DatabasePutTest, TheCachedValueItselfMayBePut) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr held = Held("key");
  Change(held, "VALUE");
  EXPECT_EQ(store_.Put(Datum("key"), *held.ptr), 0);
  EXPECT_FALSE(held.ptr->dirty);
  EXPECT_EQ(held.ptr->refs, 2);
  EXPECT_EQ(Stored().at("key"), "VALUE");
}

TEST_F(DatabasePutTest, TheNewBytesMayLieInTheCachedValue) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr held = Held("key");
  EXPECT_EQ(store_.Put(Datum("key"), DBDatum(held.ptr->data + 1, 3)), 0);
  EXPECT_EQ(Bytes(*held.ptr), "alu");
}

TEST_F(DatabasePutTest, EmptyValuesNeedNoMemory) {
  EXPECT_EQ(store_.Put(Datum("key"), DBDatum()), 0);
  EXPECT_EQ(Get("key"), "");
  EXPECT_EQ(store_.Put(Datum("key"), DBDatum()), 0);
  EXPECT_EQ(Stored(), (Records{{"key", ""}}));
}

TEST_F(DatabasePutTest, ACountedValueWithoutMemoryIsStoredAsEmpty) {
  DBDatumPtr value;
  value.ptr = new DBDatum();
  value.ptr->refs = 1;
  EXPECT_EQ(store_.Put(Datum("key"), *value.ptr), 0);
  EXPECT_EQ(Stored(), (Records{{"key", ""}}));
}

TEST_F(DatabasePutTest, KeysAndValuesMayHoldZeros) {
  EXPECT_EQ(Put("c-\0\1"sv, "a\0b"sv), 0);
  EXPECT_EQ(Get("c-\0\1"sv), "a\0b"sv);
  EXPECT_EQ(Stored(), (Records{{std::string("c-\0\1", 4), std::string("a\0b", 3)}}));
}

TEST_F(DatabasePutTest, ARefusedStoreReturnsGdbmsErrorAndPrintsNothing) {
  PlantAndReopen({{"key", "value"}}, 0);
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(Put("key", "new"), GDBM_READER_CANT_STORE); });
  EXPECT_EQ(printed, "");
}

TEST_F(DatabasePutTest, ARefusedValueStaysInTheCacheAndNotInTheFile) {
  PlantAndReopen({{"key", "value"}}, 0);
  Put("key", "new");
  Put("other", "new too");
  EXPECT_EQ(Get("key"), "new");
  EXPECT_EQ(Get("other"), "new too");
  store_.Flush();
  EXPECT_EQ(Get("key"), "value");
  EXPECT_EQ(Get("other"), "none");
}

TEST_F(DatabasePutTest, EachOfGdbmsErrorsIsReturned) {
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(Put("key", "value"), GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(Put("key", "value"), 0);
}

TEST_F(DatabasePutTest, MoreBytesThanGdbmCanCountAreRefused) {
  const DBDatumPtr value = Counted("short");
  value.ptr->size = 1u + INT_MAX;
  GdbmWatch gdbm;
  EXPECT_GT(store_.Put(Datum("key"), *value.ptr), 0);
  EXPECT_EQ(gdbm.Count("store"), 0u);
}

TEST_F(DatabasePutTest, AsManyBytesAsGdbmCanCountAreHandedToIt) {
  const DBDatumPtr value = Counted(std::string(kNotedBytes, 'v'));
  value.ptr->size = INT_MAX;
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(store_.Put(Datum("key"), *value.ptr), GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(gdbm.Count("store"), 1u);
}

TEST_F(DatabaseDelTest, RemovesFromCacheAndFile) {
  Put("key", "value");
  EXPECT_EQ(store_.Del(Datum("key")), 0);
  EXPECT_EQ(Get("key"), "none");
  EXPECT_TRUE(Stored().empty());
}

TEST_F(DatabaseDelTest, RemovesWhatWasNeverRead) {
  PlantAndReopen({{"key", "value"}, {"other", "stays"}});
  EXPECT_EQ(store_.Del(Datum("key")), 0);
  EXPECT_EQ(Stored(), (Records{{"other", "stays"}}));
}

TEST_F(DatabaseDelTest, AnAbsentKeyIsNoError) {
  GdbmWatch gdbm;
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(store_.Del(Datum("key")), 0); }), "");
  EXPECT_EQ(gdbm.Lines(), (Lines{"delete key"}));
}

// No bytes of the key are looked at: the cache is empty.
TEST_F(DatabaseDelTest, AKeyOfMoreBytesThanGdbmCanCountIsAbsent) {
  DBDatum key = Datum("key");
  key.size = 1u + INT_MAX;
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Del(key), 0);
  EXPECT_TRUE(gdbm.Lines().empty());
}

TEST_F(DatabaseDelTest, ARefusedDeleteIsNoErrorAndForgetsTheCachedValue) {
  PlantAndReopen({{"key", "value"}}, 0);
  Change(Held("key"), "VALUE");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(store_.Del(Datum("key")), 0); }), "");
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseDelTest, ACountedKeyHasItsCountAgain) {
  const DBDatumPtr key = Counted("key");
  Put("key", "value");
  for (int i = 0; i < 2; ++i) {  // with a record, and without
    EXPECT_EQ(store_.Del(*key.ptr), 0);
    EXPECT_EQ(key.ptr->refs, 1);
  }
}

TEST_F(DatabaseDelTest, TheHolderKeepsTheValue) {
  Put("key", "value");
  const DBDatumPtr held = Held("key");
  EXPECT_EQ(store_.Del(Datum("key")), 0);
  EXPECT_EQ(held.ptr->refs, 1);
  EXPECT_EQ(Bytes(*held.ptr), "value");
  EXPECT_EQ(Get("key"), "none");
}

TEST_F(DatabaseDelTest, AChangeMadeAfterwardsIsNotFlushed) {
  Put("key", "value");
  const DBDatumPtr held = Held("key");
  store_.Del(Datum("key"));
  Change(held, "VALUE");
  EXPECT_TRUE(Stored().empty());
}

TEST_F(DatabaseDelTest, TheKeyMayBeTheCachesOwn) {
  Put("key", "value");
  DBDatumPtr key;
  ASSERT_EQ(store_.First(&key), 0);
  EXPECT_EQ(store_.Del(*key.ptr), 0);
  EXPECT_EQ(Bytes(*key.ptr), "key");
  EXPECT_TRUE(Stored().empty());
}

TEST_F(DatabaseDelTest, ADeletedKeyCanBePutAgain) {
  Put("key", "value");
  const DBDatumPtr held = Held("key");
  store_.Del(Datum("key"));
  EXPECT_EQ(Put("key", "again"), 0);
  EXPECT_EQ(Bytes(*held.ptr), "value");
  EXPECT_EQ(Get("key"), "again");
}

}  // namespace
}  // namespace kestan_tests
