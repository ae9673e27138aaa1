// What a flush writes and drops, and the operations that flush.
#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using DatabaseFlush = DatabaseTest;
using DatabaseShrink = DatabaseTest;

TEST_F(DatabaseFlush, AChangeReachesTheFileOnlyWithAFlush) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  store_.Sync();
  EXPECT_EQ(Get("key"), "VALUE");
  EXPECT_EQ(InFile().at("key"), "value");
  EXPECT_EQ(store_.Flush(), 0);
  EXPECT_EQ(InFile().at("key"), "VALUE");
}

TEST_F(DatabaseFlush, AChangeWithoutItsMarkIsLost) {
  PlantAndReopen({{"key", "value"}});
  Held("key").ptr->data[0] = 'X';
  store_.Flush();
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFlush, TheHolderMayReplaceTheBuffer) {
  PlantAndReopen({{"key", "value"}});
  DBDatumPtr held = Held("key");
  std::free(held.ptr->data);
  held.ptr->data = MallocCopy("a value that has grown");
  held.ptr->size = 22;
  held.ptr->dirty = true;
  held.Free();
  EXPECT_EQ(Stored().at("key"), "a value that has grown");
}

TEST_F(DatabaseFlush, ManyChangesAreWrittenOnce) {
  PlantAndReopen({{"key", "value"}});
  GdbmWatch gdbm;
  for (const char* text : {"a", "b", "c"}) Change(Held("key"), text);
  store_.Flush();
  EXPECT_EQ(gdbm.Lines(), (Lines{"fetch key", "store key", "sync"}));
}

TEST_F(DatabaseFlush, WritesInKeyOrder) {
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

TEST_F(DatabaseFlush, AHeldChangeIsWrittenByEveryFlush) {
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

TEST_F(DatabaseFlush, AHeldRecordStaysInTheCache) {
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

TEST_F(DatabaseFlush, ARecordThatNobodyHoldsIsDropped) {
  PlantAndReopen({{"clean", "1"}, {"dirty", "2"}});
  Change(Held("dirty"), "3");
  Get("clean");
  store_.Flush();
  GdbmWatch gdbm;
  EXPECT_EQ(Get("clean") + Get("dirty"), "13");
  EXPECT_EQ(gdbm.Count("fetch"), 2u);
}

TEST_F(DatabaseFlush, CloseLeavesHeldRecordsInTheCacheButClosesTheFile) {
  PlantAndReopen({{"key", "value"}});
  const DBDatumPtr held = Held("key");
  store_.Close();
  EXPECT_EQ(held.ptr->refs, 2);
  EXPECT_EQ(Dump(path_).at("key"), "value");
}

TEST_F(DatabaseFlush, WithNothingToWriteStillSyncs) {
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Flush(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"sync"}));
}

TEST_F(DatabaseFlush, ARefusedRecordIsNamedAndItsErrorReturned) {
  PlantAndReopen({{"key", "value"}}, 0);
  Change(Held("key"), "VALUE");
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Flush(), GDBM_READER_CANT_STORE); });
  EXPECT_EQ(printed, "Kestan: Could not write item 'key' -- Reader can't store\n");
}

TEST_F(DatabaseFlush, ARefusedRecordDoesNotStopTheOthers) {
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

TEST_F(DatabaseFlush, TheLastErrorIsReturned) {
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

TEST_F(DatabaseFlush, ARefusedRecordStaysOnlyWhileHeld) {
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

TEST_F(DatabaseFlush, TheMessageEndsTheKeyAtItsFirstZero) {
  const std::string key("ab\0cd", 5);
  PlantAndReopen({{key, "value"}}, 0);
  Change(Held(key), "VALUE");
  EXPECT_EQ(StandardErrorOf([&] { store_.Flush(); }),
            "Kestan: Could not write item 'ab' -- Reader can't store\n");
}

TEST_F(DatabaseFlush, TheMessageHasAllOfALongKeyAndNoMore) {
  const std::string key(5000, 'k');
  const DBDatumPtr shared = Counted(key);
  const DBDatumPtr value = Counted("value");
  PlantAndReopen({}, 0);
  store_.Put(*shared.ptr, *value.ptr);
  value.ptr->dirty = true;
  EXPECT_EQ(StandardErrorOf([&] { store_.Flush(); }),
            "Kestan: Could not write item '" + key + "' -- Reader can't store\n");
}

TEST_F(DatabaseFlush, CloseReturnsItsResultAndClosesAllTheSame) {
  PlantAndReopen({{"key", "value"}}, 0);
  Change(Held("key"), "VALUE");
  const std::string printed =
      StandardErrorOf([&] { EXPECT_EQ(store_.Close(), GDBM_READER_CANT_STORE); });
  EXPECT_EQ(printed, "Kestan: Could not write item 'key' -- Reader can't store\n");
  EXPECT_EQ(store_.Close(), 0);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFlush, AFailedSyncIsNotReported) {
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

TEST_F(DatabaseFlush, SyncWritesNoRecords) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Sync(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"sync"}));
}

TEST_F(DatabaseShrink, FlushesReorganizesAndSyncs) {
  PlantAndReopen({{"key", "value"}});
  Change(Held("key"), "VALUE");
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Shrink(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync", "reorganize", "sync"}));
}

TEST_F(DatabaseShrink, KeepsTheRecordsAndStaysOpen) {
  Put("key", "value");
  Put("gone", "value");
  store_.Del(Datum("gone"));
  EXPECT_EQ(store_.Shrink(), 0);
  EXPECT_EQ(Get("key"), "value");
  EXPECT_EQ(Put("more", "value"), 0);
  EXPECT_EQ(Stored(), (Records{{"key", "value"}, {"more", "value"}}));
}

TEST_F(DatabaseShrink, GivesFreeSpaceBack) {
  for (char letter = 'a'; letter <= 'z'; ++letter) Put({&letter, 1}, std::string(5000, letter));
  store_.Sync();
  const auto before = std::filesystem::file_size(path_);
  for (char letter = 'a'; letter <= 'z'; ++letter) store_.Del(DBDatum(&letter, 1));
  store_.Shrink();
  EXPECT_LT(std::filesystem::file_size(path_), before);
}

TEST_F(DatabaseShrink, LeavesAFileThatIsOnlyReadAsItIs) {
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

TEST_F(DatabaseShrink, ReportsNoFailure) {
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
