// SPDX-License-Identifier: GPL-3.0-or-later
// Walking the keys of the file.
#include <algorithm>
#include <array>
#include <cstdint>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

class DatabaseCursorTest : public DatabaseTest {
 protected:
  // Walks the whole store, values included.
  Records Walk() {
    Records records;
    DBDatumPtr key;
    DBDatumPtr value;
    int end = store_.First(&key, &value);
    for (; end == 0; end = store_.Next(&key, &value)) {
      records[Bytes(*key.ptr)] = Bytes(*value.ptr);
    }
    EXPECT_EQ(end, -1);
    EXPECT_EQ(key.ptr, nullptr);
    return records;
  }

  // Walks the keys alone, at most `most` of them, in the order they come.
  Lines Keys(std::size_t most = SIZE_MAX) {
    Lines keys;
    DBDatumPtr key;
    for (int end = store_.First(&key); end == 0; end = store_.Next(&key)) {
      keys.push_back(Bytes(*key.ptr));
      if (keys.size() == most) break;
    }
    return keys;
  }

  // The keys of a file in gdbm's order.
  static Lines GdbmKeys(const std::string& path) {
    Lines keys;
    GDBM_FILE file = gdbm_open(path.c_str(), 0, GDBM_READER, 0, nullptr);
    for (datum key = gdbm_firstkey(file); key.dptr != nullptr;) {
      keys.emplace_back(key.dptr, static_cast<std::size_t>(key.dsize));
      const datum next = gdbm_nextkey(file, key);
      std::free(key.dptr);
      key = next;
    }
    gdbm_close(file);
    return keys;
  }

  // Goes on with the walk, and expects the keys that come after `key` in the file at `path`.
  void ExpectRestAfter(const std::string& key, const std::string& path) {
    Lines rest;
    for (DBDatumPtr next; store_.Next(&next) == 0;) rest.push_back(Bytes(*next.ptr));
    EXPECT_EQ(store_.WalkError(), 0);
    store_.Close();
    const Lines keys = GdbmKeys(path);
    EXPECT_EQ(rest, Lines(std::next(std::find(keys.begin(), keys.end(), key)), keys.end()));
  }

  // Keys that collide in gdbm's table, so that their order depends on which of them came first.
  static constexpr std::array<const char*, 10> kCrowded = {
      "k5304", "k85", "k8462", "k8109", "k3338", "k9423", "k4580", "k499", "k3875", "k3175"};

  const Records three_ = {{"a", "1"}, {"b", "2"}, {std::string("c\0c", 3), ""}};
};

TEST_F(DatabaseCursorTest, AnEmptyFileEndsAtOnceWithANullKey) {
  DBDatumPtr key = Counted("old");
  DBDatumPtr value = Counted("kept");
  EXPECT_EQ(store_.First(&key, &value), -1);
  EXPECT_EQ(key.ptr, nullptr);
  EXPECT_EQ(Bytes(*value.ptr), "kept");
}

TEST_F(DatabaseCursorTest, NextBeforeAnyFirstIsTheEnd) {
  Put("key", "value");
  DBDatumPtr key = Counted("old");
  DBDatumPtr value = Counted("kept");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_EQ(store_.Next(&key, &value), -1); }), "");
  EXPECT_EQ(key.ptr, nullptr);
  EXPECT_EQ(Bytes(*value.ptr), "kept");
}

TEST_F(DatabaseCursorTest, VisitsEveryRecordOnce) {
  PlantAndReopen(three_);
  EXPECT_EQ(Walk(), three_);
  EXPECT_EQ(Walk(), three_);
}

TEST_F(DatabaseCursorTest, VisitsKeysInGdbmsOrder) {
  Records many;
  for (int i = 0; i < 500; ++i) many["key" + std::to_string(i)] = "value";
  PlantAndReopen(many);
  const Lines keys = Keys();
  store_.Close();
  EXPECT_EQ(keys, GdbmKeys(path_));
}

TEST_F(DatabaseCursorTest, WithoutAValueReadsNoValues) {
  PlantAndReopen(three_);
  GdbmWatch gdbm;
  EXPECT_EQ(Keys().size(), 3u);
  EXPECT_EQ(gdbm.Count("fetch"), 0u);
}

TEST_F(DatabaseCursorTest, WithAValueReadsThroughTheCache) {
  PlantAndReopen(three_);
  Get("a");
  GdbmWatch gdbm;
  Walk();
  Walk();
  EXPECT_EQ(gdbm.Count("fetch"), 2u);
}

TEST_F(DatabaseCursorTest, SeesWhatWasPutAndNotWhatWasDeleted) {
  PlantAndReopen(three_);
  Put("d", "4");
  store_.Del(Datum("a"));
  EXPECT_EQ(Walk(), (Records{{"b", "2"}, {std::string("c\0c", 3), ""}, {"d", "4"}}));
}

TEST_F(DatabaseCursorTest, SeesChangesThatWaitForAFlush) {
  PlantAndReopen(three_);
  Change(Held("a"), "X");
  EXPECT_EQ(Walk().at("a"), "X");
  EXPECT_EQ(InFile().at("a"), "1");
}

TEST_F(DatabaseCursorTest, ValuesMayBeChangedDuringTheWalk) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  DBDatumPtr key;
  DBDatumPtr value;
  for (int end = store_.First(&key, &value); end == 0; end = store_.Next(&key, &value)) {
    Change(value, "X");
  }
  EXPECT_EQ(Stored(), (Records{{"a", "X"}, {"b", "X"}, {"c", "X"}}));
}

TEST_F(DatabaseCursorTest, AWalkSurvivesFlushes) {
  PlantAndReopen(three_);
  Records seen;
  DBDatumPtr key;
  DBDatumPtr value;
  for (int end = store_.First(&key, &value); end == 0; end = store_.Next(&key, &value)) {
    seen[Bytes(*key.ptr)] = Bytes(*value.ptr);
    store_.Flush();
  }
  EXPECT_EQ(seen, three_);
}

// In a file that holds the same keys in another order, a walk may come to keys that it has passed.
TEST_F(DatabaseCursorTest, GoesOnInACompactedFileAsGdbmDoes) {
  for (const char* key : kCrowded) Put(key, "value");
  const std::string fifth = Keys(5).back();
  store_.Shrink();
  ExpectRestAfter(fifth, path_);
}

TEST_F(DatabaseCursorTest, GoesOnInAnotherFileAsGdbmDoes) {
  for (const char* key : kCrowded) Put(key, "value");
  const std::string other = folder_ / "other";
  for (const std::string& key : Keys()) Plant(other, {{key, "value"}});
  const std::string fifth = Keys(5).back();
  store_.Close();
  store_.Open(other.c_str(), 1);
  ExpectRestAfter(fifth, other);
}

// Flushes store held records of an earlier file in the next one too.
TEST_F(DatabaseCursorTest, GoesOnAsGdbmDoesWhereAFlushAddsRecords) {
  std::vector<DBDatumPtr> held;
  for (int i = 1239; i <= 1245; ++i) {
    Put("h" + std::to_string(i), "value");
    held.push_back(Held("h" + std::to_string(i)));
  }
  const std::string other = folder_ / "other";
  store_.Close();
  store_.Open(other.c_str(), 1);
  for (const char* key : kCrowded) Put(key, "value");
  for (const DBDatumPtr& value : held) Change(value, "X");
  const std::string fifth = Keys(5).back();
  store_.Flush();
  ExpectRestAfter(fifth, other);
}

TEST_F(DatabaseCursorTest, TheEndFreesTheKeyAndLeavesTheValue) {
  PlantAndReopen({{"a", "1"}});
  DBDatumPtr key;
  DBDatumPtr value;
  ASSERT_EQ(store_.First(&key, &value), 0);
  EXPECT_EQ(store_.Next(&key, &value), -1);
  EXPECT_EQ(key.ptr, nullptr);
  EXPECT_EQ(Bytes(*value.ptr), "1");
}

TEST_F(DatabaseCursorTest, TheEndIsReachedAgainAndAgainWithTheLastKey) {
  PlantAndReopen({{"a", "1"}});
  DBDatumPtr key;
  store_.First(&key);
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Next(&key), -1);
  EXPECT_EQ(store_.Next(&key), -1);
  EXPECT_EQ(gdbm.Lines(), (Lines{"nextkey a", "nextkey a"}));
}

TEST_F(DatabaseCursorTest, GdbmsErrorsEndTheWalk) {
  PlantAndReopen(three_);
  GdbmWatch gdbm;
  gdbm.Fail("firstkey", 1, GDBM_FILE_READ_ERROR);
  gdbm.Fail("nextkey", 1, GDBM_FILE_READ_ERROR);
  DBDatumPtr key;
  EXPECT_EQ(store_.First(&key), -1);
  EXPECT_EQ(store_.First(&key), 0);
  EXPECT_EQ(store_.Next(&key), -1);
  EXPECT_EQ(store_.Next(&key), 0);
}

TEST_F(DatabaseCursorTest, AValueThatCannotBeReadIsReported) {
  PlantAndReopen({{"a", "1"}});
  GdbmWatch gdbm;
  gdbm.Fail("fetch", 1, GDBM_FILE_READ_ERROR);
  DBDatumPtr key;
  DBDatumPtr value = Counted("old");
  EXPECT_EQ(store_.First(&key, &value), GDBM_FILE_READ_ERROR);
  EXPECT_EQ(Bytes(*key.ptr), "a");
  EXPECT_EQ(value.ptr, nullptr);
}

TEST_F(DatabaseCursorTest, TheKeyIsHeldByTheCallerAndTheCursor) {
  PlantAndReopen({{"a", "1"}});
  DBDatumPtr key;
  store_.First(&key);
  EXPECT_EQ(key.ptr->refs, 2);
}

TEST_F(DatabaseCursorTest, ACachedKeyIsTheCachesOwn) {
  PlantAndReopen({{"a", "1"}});
  Get("a");
  DBDatumPtr key;
  store_.First(&key);
  EXPECT_EQ(key.ptr->refs, 3);
  DBDatumPtr again;
  store_.First(&again);
  EXPECT_EQ(again.ptr, key.ptr);
}

TEST_F(DatabaseCursorTest, TheKeyMayBeTheHandleOfTheLastStep) {
  PlantAndReopen({{"a", "b"}, {"b", "a"}});
  DBDatumPtr handle;
  ASSERT_EQ(store_.First(&handle), 0);
  const std::string first = Bytes(*handle.ptr);
  EXPECT_EQ(store_.Get(&handle, *handle.ptr), 0);
  EXPECT_NE(Bytes(*handle.ptr), first);
  EXPECT_EQ(store_.Next(&handle), 0);
  EXPECT_NE(Bytes(*handle.ptr), first);
}

TEST_F(DatabaseCursorTest, TheCurrentRecordMayBeDeleted) {
  PlantAndReopen({{"a", "1"}});
  DBDatumPtr key;
  DBDatumPtr value;
  ASSERT_EQ(store_.First(&key, &value), 0);
  EXPECT_EQ(store_.Del(*key.ptr), 0);
  EXPECT_EQ(Bytes(*key.ptr), "a");
  EXPECT_EQ(store_.First(&key), -1);
}

TEST_F(DatabaseCursorTest, WalksAFileThatCannotBeMappedAndTriesNoMore) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}});
  GdbmWatch gdbm;
  std::size_t options = 0;
  gdbm.Observe([&](const GdbmCall& call) { options += call.function == "setopt" ? 1 : 0; });
  gdbm.Fail("setopt", 1, GDBM_ERR_USAGE);
  for (int walk = 0; walk < 2; ++walk) {
    EXPECT_EQ(Keys().size(), 2u);
    EXPECT_EQ(store_.WalkError(), 0);
  }
  EXPECT_EQ(options, 1u);
}

}  // namespace
}  // namespace kestan_tests
