// SPDX-License-Identifier: GPL-3.0-or-later
// What a flush writes and drops, and the operations that flush.
#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using DatabaseFlushTest = DatabaseTest;
using DatabaseShrinkTest = DatabaseTest;

TEST_F(DatabaseFlushTest, AChangeReachesTheFileOnlyWithAFlush) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  store_.Sync();
  EXPECT_EQ(Get("key"), "VALUE");
  EXPECT_EQ(InFile().at("key"), "value");
  EXPECT_EQ(store_.Flush(), 0);
  EXPECT_EQ(InFile().at("key"), "VALUE");
}

TEST_F(DatabaseFlushTest, AChangeWithoutItsMarkIsLost) {
  PlantAndReopen({{"key", "value"}});
  Held("key").ptr->data[0] = 'X';
  store_.Flush();
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFlushTest, TheHolderMayReplaceTheBuffer) {
  PlantAndReopen({{"key", "value"}});
  DBDatumPtr held = Held("key");
  std::free(held.ptr->data);
  held.ptr->data = MallocCopy("a value that has grown");
  held.ptr->size = 22;
  held.ptr->dirty = true;
  held.Free();
  EXPECT_EQ(Stored().at("key"), "a value that has grown");
}

TEST_F(DatabaseFlushTest, ManyChangesAreWrittenOnce) {
  PlantAndReopen({{"key", "value"}});
  GdbmWatch gdbm;
  for (const char* text : {"a", "b", "c"}) Change(Held("key"), text);
  store_.Flush();
  EXPECT_EQ(gdbm.Lines(), (Lines{"fetch key", "store key", "sync"}));
}

TEST_F(DatabaseFlushTest, WritesInKeyOrder) {
  const Lines keys = {"a", "ab", "abc", "b", "wordA", "wordB", "\xff"};
  Records records;
  for (const std::string& key : keys) records[key] = "value";
  PlantAndReopen(records);
  for (const char* key : {"wordB", "\xff", "b", "abc", "a", "wordA", "ab"}) Change(Held(key), "V");
  GdbmWatch gdbm;
  store_.Flush();
  Lines expected;
  for (const std::string& key : keys) expected.push_back("store " + key);
  expected.push_back("sync");
  EXPECT_EQ(gdbm.Lines(), expected);
}

TEST_F(DatabaseFlushTest, AHeldChangeIsWrittenByEveryFlush) {
  PlantAndReopen({{"key", "value"}});
  DBDatumPtr held = Held("key");
  Change(held, "VALUE");
  GdbmWatch gdbm;
  store_.Flush();
  store_.Flush();
  EXPECT_TRUE(held.ptr->dirty);
  held.Free();
  store_.Flush();
  store_.Flush();
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync", "store key", "sync", "store key", "sync",  //
                                 "sync"}));
}

TEST_F(DatabaseFlushTest, AHeldRecordStaysInTheCache) {
  PlantAndReopen({{"clean", "1"}, {"dirty", "2"}});
  const DBDatumPtr clean = Held("clean");
  const DBDatumPtr dirty = Held("dirty");
  Change(dirty, "3");
  store_.Flush();
  GdbmWatch gdbm;
  EXPECT_EQ(Held("clean").ptr, clean.ptr);
  EXPECT_EQ(Held("dirty").ptr, dirty.ptr);
  EXPECT_EQ(gdbm.Count("fetch"), 0u);
}

TEST_F(DatabaseFlushTest, ARecordThatNobodyHoldsIsDropped) {
  PlantAndReopen({{"clean", "1"}, {"dirty", "2"}});
  Change(Held("dirty"), "3");
  Get("clean");
  store_.Flush();
  GdbmWatch gdbm;
  EXPECT_EQ(Get("clean") + Get("dirty"), "13");
  EXPECT_EQ(gdbm.Count("fetch"), 2u);
}

TEST_F(DatabaseFlushTest, CloseLeavesHeldRecordsInTheCacheButClosesTheFile) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr held = Held("key");
  store_.Close();
  EXPECT_EQ(held.ptr->refs, 2);
  EXPECT_EQ(Dump(path_).at("key"), "value");
}

TEST_F(DatabaseFlushTest, WithNothingToWriteStillSyncs) {
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Flush(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"sync"}));
}

TEST_F(DatabaseFlushTest, ARefusedRecordIsNamedAndItsErrorReturned) {
  PlantAndReopen({{"key", "value"}}, 0);
  Change(Held("key"), "VALUE");
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Flush(), GDBM_READER_CANT_STORE); });
  EXPECT_EQ(printed, "Kestan: Could not write item 'key' -- Reader can't store\n");
}

TEST_F(DatabaseFlushTest, ARefusedRecordDoesNotStopTheOthers) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  for (const char* key : {"a", "b", "c"}) Change(Held(key), "X");
  GdbmWatch gdbm;
  gdbm.Fail("store", 2, GDBM_FILE_WRITE_ERROR);
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Flush(), GDBM_FILE_WRITE_ERROR); });
  EXPECT_EQ(printed, std::string("Kestan: Could not write item 'b' -- ") +
                         gdbm_strerror(GDBM_FILE_WRITE_ERROR) + "\n");
  EXPECT_EQ(gdbm.Lines(), (Lines{"store a", "store b", "store c", "sync"}));
  EXPECT_EQ(Stored(), (Records{{"a", "X"}, {"b", "2"}, {"c", "X"}}));
}

TEST_F(DatabaseFlushTest, TheLastErrorIsReturned) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  for (const char* key : {"a", "b", "c"}) Change(Held(key), "X");
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  gdbm.Fail("store", 2, GDBM_FILE_SEEK_ERROR);
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Flush(), GDBM_FILE_SEEK_ERROR); });
  EXPECT_EQ(printed, std::string("Kestan: Could not write item 'a' -- ") +
                         Database::ErrorString(GDBM_FILE_WRITE_ERROR) +
                         "\nKestan: Could not write item 'b' -- " +
                         Database::ErrorString(GDBM_FILE_SEEK_ERROR) + "\n");
}

TEST_F(DatabaseFlushTest, ARefusedRecordStaysOnlyWhileHeld) {
  PlantAndReopen({{"free", "1"}, {"held", "2"}});
  Change(Held("free"), "X");
  const DBDatumPtr held = Held("held");
  Change(held, "X");
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  gdbm.Fail("store", 2, GDBM_FILE_WRITE_ERROR);
  StandardErrorOf([&] { store_.Flush(); });
  EXPECT_EQ(Get("free"), "1");
  EXPECT_EQ(Get("held"), "X");
}

TEST_F(DatabaseFlushTest, TheMessageEndsTheKeyAtItsFirstZero) {
  const std::string key("ab\0cd", 5);
  PlantAndReopen({{key, "value"}}, 0);
  Change(Held(key), "VALUE");
  EXPECT_EQ(StandardErrorOf([&] { store_.Flush(); }),
            "Kestan: Could not write item 'ab' -- Reader can't store\n");
}

TEST_F(DatabaseFlushTest, TheMessageHasAllOfALongKeyAndNoMore) {
  const std::string key(5000, 'k');
  const DBDatumPtr shared = Counted(key);
  const DBDatumPtr value = Counted("value");
  PlantAndReopen({}, 0);
  store_.Put(*shared.ptr, *value.ptr);
  value.ptr->dirty = true;
  EXPECT_EQ(StandardErrorOf([&] { store_.Flush(); }),
            "Kestan: Could not write item '" + key + "' -- Reader can't store\n");
}

TEST_F(DatabaseFlushTest, CloseReturnsItsResultAndClosesAllTheSame) {
  PlantAndReopen({{"key", "value"}}, 0);
  Change(Held("key"), "VALUE");
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Close(), GDBM_READER_CANT_STORE); });
  EXPECT_EQ(printed, "Kestan: Could not write item 'key' -- Reader can't store\n");
  EXPECT_EQ(store_.Close(), 0);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFlushTest, AFailedSyncIsNotReported) {
  GdbmWatch gdbm;
  gdbm.Fail("sync", 1, GDBM_FILE_SYNC_ERROR);
  gdbm.Fail("sync", 2, GDBM_FILE_SYNC_ERROR);
  const std::string printed = StandardErrorOf([&] {
    EXPECT_EQ(store_.Flush(), 0);
    EXPECT_EQ(store_.Sync(), 0);
  });
  EXPECT_EQ(printed, "");
  EXPECT_EQ(gdbm.Count("sync"), 2u);
}

TEST_F(DatabaseFlushTest, SyncWritesNoRecords) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Sync(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"sync"}));
}

TEST_F(DatabaseShrinkTest, FlushesReorganizesAndSyncs) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Shrink(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync", "reorganize", "sync"}));
}

TEST_F(DatabaseShrinkTest, KeepsTheRecordsAndStaysOpen) {
  Put("key", "value");
  Put("gone", "value");
  store_.Del(Datum("gone"));
  EXPECT_EQ(store_.Shrink(), 0);
  EXPECT_EQ(Get("key"), "value");
  EXPECT_EQ(Put("more", "value"), 0);
  EXPECT_EQ(Stored(), (Records{{"key", "value"}, {"more", "value"}}));
}

TEST_F(DatabaseShrinkTest, GivesFreeSpaceBack) {
  for (char letter = 'a'; letter <= 'z'; ++letter) Put({&letter, 1}, std::string(5000, letter));
  store_.Sync();
  const auto before = std::filesystem::file_size(path_);
  for (char letter = 'a'; letter <= 'z'; ++letter) store_.Del(DBDatum(&letter, 1));
  store_.Shrink();
  EXPECT_LT(std::filesystem::file_size(path_), before);
}

TEST_F(DatabaseShrinkTest, LeavesAFileThatIsOnlyReadAsItIs) {
  PlantAndReopen({{"key", "value"}}, 0);
  std::size_t options = 0;
  {
    GdbmWatch gdbm;
    gdbm.Observe([&](const GdbmCall& call) { options += call.function == "setopt" ? 1 : 0; });
    EXPECT_EQ(store_.Shrink(), 0);
  }
  EXPECT_EQ(options, 0u);  // they are for writers
  EXPECT_EQ(store_.FileError(), GDBM_READER_CANT_REORGANIZE);
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseShrinkTest, ReportsNoFailure) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  GdbmWatch gdbm;
  gdbm.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  gdbm.Fail("sync", 1, GDBM_FILE_SYNC_ERROR);
  gdbm.Fail("reorganize", 1, GDBM_REORGANIZE_FAILED);
  gdbm.Fail("sync", 2, GDBM_FILE_SYNC_ERROR);
  const std::string printed = StandardErrorOf([&] { EXPECT_EQ(store_.Shrink(), 0); });
  EXPECT_EQ(printed, std::string("Kestan: Could not write item 'key' -- ") +
                         Database::ErrorString(GDBM_FILE_WRITE_ERROR) + "\n");
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync", "reorganize", "sync"}));
}

}  // namespace
}  // namespace kestan_tests
