// SPDX-License-Identifier: GPL-3.0-or-later
// How a host learns that a record was not read or did not reach the file.
#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using DatabaseErrorTest = DatabaseTest;

TEST_F(DatabaseErrorTest, IsNoneWhileAllGoesWell) {
  Put("key", "value");
  Change(Held("key"), "other");
  store_.Del(Datum("missing"));
  EXPECT_EQ(Get("missing"), "none");
  store_.Shrink();
  store_.Close();
  EXPECT_EQ(store_.FileError(), 0);
}

TEST_F(DatabaseErrorTest, OfAReaderIsNoneToo) {
  PlantAndReopen({{"key", "value"}}, 0);
  EXPECT_EQ(Get("key"), "value");
  store_.Close();
  EXPECT_EQ(store_.FileError(), 0);
}

TEST_F(DatabaseErrorTest, IsTheFirstOfMany) {
  GdbmWatch watch;
  watch.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  watch.Fail("fetch", 1, GDBM_FILE_READ_ERROR);
  Put("key", "value");
  EXPECT_EQ(Get("missing"), "none");
  EXPECT_EQ(store_.FileError(), GDBM_FILE_WRITE_ERROR);
}

TEST_F(DatabaseErrorTest, OfAReadIsKept) {
  GdbmWatch watch;
  watch.Fail("fetch", 1, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(Get("key"), "none");
  EXPECT_EQ(store_.FileError(), GDBM_FILE_READ_ERROR);
}

TEST_F(DatabaseErrorTest, OfARemovalIsKept) {
  Put("key", "value");
  GdbmWatch watch;
  watch.Fail("delete", 1, GDBM_FILE_WRITE_ERROR);
  store_.Del(Datum("key"));
  EXPECT_EQ(store_.FileError(), GDBM_FILE_WRITE_ERROR);
}

TEST_F(DatabaseErrorTest, OfAWalkIsKept) {
  GdbmWatch watch;
  watch.Fail("firstkey", 1, GDBM_BAD_BUCKET);
  DBDatumPtr key;
  EXPECT_EQ(store_.First(&key), -1);
  EXPECT_EQ(store_.FileError(), GDBM_BAD_BUCKET);
}

// gdbm reports no error where it has no memory for a bucket.

TEST_F(DatabaseErrorTest, OfAReadForWhichGdbmReportsNoErrorIsNotSuccess) {
  DBDatumPtr value;
  GdbmWatch watch;
  watch.Fail("fetch", 1, GDBM_NO_ERROR);
  EXPECT_EQ(store_.Get(&value, Datum("key")), GDBM_MALLOC_ERROR);
  EXPECT_EQ(value.ptr, nullptr);
  EXPECT_EQ(store_.FileError(), GDBM_MALLOC_ERROR);
}

TEST_F(DatabaseErrorTest, OfAWriteForWhichGdbmReportsNoErrorIsNotSuccess) {
  GdbmWatch watch;
  watch.Fail("store", 1, GDBM_NO_ERROR);
  EXPECT_EQ(Put("key", "value"), GDBM_MALLOC_ERROR);
  EXPECT_EQ(store_.FileError(), GDBM_MALLOC_ERROR);
}

TEST_F(DatabaseErrorTest, OfAWalkForWhichGdbmReportsNoErrorIsNotItsEnd) {
  for (const char* const function : {"firstkey", "nextkey"}) {
    Put("one", "1");
    Put("two", "2");
    DBDatumPtr key;
    GdbmWatch watch;
    watch.Fail(function, 1, GDBM_NO_ERROR);
    if (store_.First(&key) == 0) {
      EXPECT_EQ(store_.Next(&key), -1);
    }
    EXPECT_EQ(store_.WalkError(), GDBM_MALLOC_ERROR) << function;
  }
}

TEST_F(DatabaseErrorTest, OfAFileThatCannotBeOpenedIsNeverZero) {
  store_.Close();
  GdbmWatch watch;
  watch.Fail("open", 1, GDBM_NO_ERROR);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), GDBM_MALLOC_ERROR);
}

TEST_F(DatabaseErrorTest, OfASyncIsKept) {
  GdbmWatch watch;
  watch.Fail("sync", 1, GDBM_FILE_SYNC_ERROR);
  store_.Sync();
  EXPECT_EQ(store_.FileError(), GDBM_FILE_SYNC_ERROR);
}

TEST_F(DatabaseErrorTest, OfAReorganisationIsKept) {
  GdbmWatch watch;
  watch.Fail("reorganize", 1, GDBM_REORGANIZE_FAILED);
  EXPECT_EQ(store_.Shrink(), 0);
  EXPECT_EQ(store_.FileError(), GDBM_REORGANIZE_FAILED);
}

TEST_F(DatabaseErrorTest, OfTheFlushAtTheEndStaysAfterClosing) {
  Put("key", "value");
  Change(Held("key"), "other");
  GdbmWatch watch;
  watch.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  StandardErrorOf([&] { store_.Close(); });
  EXPECT_EQ(store_.FileError(), GDBM_FILE_WRITE_ERROR);
}

TEST_F(DatabaseErrorTest, IsForgottenWhenAFileIsOpened) {
  {
    GdbmWatch watch;
    watch.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
    Put("key", "value");
  }
  EXPECT_EQ(store_.Open(path_.c_str(), 1), -1);
  EXPECT_EQ(store_.FileError(), GDBM_FILE_WRITE_ERROR);
  store_.Close();
  ASSERT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(store_.FileError(), 0);
}

TEST_F(DatabaseErrorTest, OfARecordTooLargeForTheFileIsKept) {
  Put("key", "");
  const DBDatumPtr value = Held("key");
  value.ptr->size = 0x80000000u;  // what follows the bytes is never read
  value.ptr->dirty = true;
  StandardErrorOf([&] { store_.Flush(); });
  EXPECT_EQ(store_.FileError(), GDBM_MALFORMED_DATA);
  value.ptr->size = 0;
}

TEST_F(DatabaseErrorTest, VerifyFindsNothingWrongWithAGoodFile) {
  Put("key", "value");
  EXPECT_EQ(store_.Verify(), 0);
}

}  // namespace
}  // namespace kestan_tests
