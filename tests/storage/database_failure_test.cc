// SPDX-License-Identifier: GPL-3.0-or-later
// The store without a file, and what errors are called.
#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

class ClosedDatabaseTest : public DatabaseTest {
 protected:
  void SetUp() override {}

  // Runs `operation`, which must return -1 and print one line that names it as `name`.
  template <typename Operation>
  void ExpectRefusal(const std::string& name, Operation operation) {
    int result = 0;
    const std::string printed = StandardErrorOf([&] { result = operation(); });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(printed, "Kestan: Call to database::" + name + " without an open database\n");
  }

  DBDatumPtr key_ = Counted("key");
  DBDatumPtr value_ = Counted("value");
};

TEST_F(ClosedDatabaseTest, GetFailsAndFreesItsHandle) {
  ExpectRefusal("get", [&] { return store_.Get(&value_, Datum("key")); });
  EXPECT_EQ(value_.ptr, nullptr);
}

TEST_F(ClosedDatabaseTest, PutFails) {
  ExpectRefusal("put", [&] { return store_.Put(*key_.ptr, *value_.ptr); });
  EXPECT_EQ(key_.ptr->refs, 1);
  EXPECT_EQ(value_.ptr->refs, 1);
}

TEST_F(ClosedDatabaseTest, DelFails) {
  ExpectRefusal("del", [&] { return store_.Del(Datum("key")); });
}

TEST_F(ClosedDatabaseTest, FirstFailsAndFreesTheKeyAlone) {
  ExpectRefusal("first", [&] { return store_.First(&key_, &value_); });
  EXPECT_EQ(key_.ptr, nullptr);
  EXPECT_EQ(Bytes(*value_.ptr), "value");
}

TEST_F(ClosedDatabaseTest, NextFailsAndFreesTheKeyAlone) {
  ExpectRefusal("next", [&] { return store_.Next(&key_, &value_); });
  EXPECT_EQ(key_.ptr, nullptr);
  EXPECT_EQ(Bytes(*value_.ptr), "value");
}

TEST_F(ClosedDatabaseTest, SyncFails) {
  ExpectRefusal("sync", [&] { return store_.Sync(); });
}

TEST_F(ClosedDatabaseTest, VerifyFails) {
  ExpectRefusal("verify", [&] { return store_.Verify(); });
}

TEST_F(ClosedDatabaseTest, HasNoSize) {
  ExpectRefusal("size", [&] { return static_cast<int>(store_.FileBytes()); });
}

TEST_F(ClosedDatabaseTest, ShrinkFails) {
  ExpectRefusal("shrink", [&] { return store_.Shrink(); });
}

TEST_F(ClosedDatabaseTest, FlushFails) {
  ExpectRefusal("flush", [&] { return store_.Flush(); });
}

TEST_F(ClosedDatabaseTest, AClosedAgainStoreFailsToo) {
  store_.Open(path_.c_str(), 1);
  Put("key", "value");
  store_.Close();
  ExpectRefusal("get", [&] { return store_.Get(&value_, Datum("key")); });
  ExpectRefusal("next", [&] { return store_.Next(&key_); });
}

TEST_F(ClosedDatabaseTest, AHeldRecordDoesNotAnswerWithoutAFile) {
  store_.Open(path_.c_str(), 1);
  Put("key", "value");
  const DBDatumPtr held = Held("key");
  store_.Close();
  ExpectRefusal("get", [&] { return store_.Get(&value_, Datum("key")); });
  EXPECT_EQ(value_.ptr, nullptr);
}

TEST_F(ClosedDatabaseTest, NothingReachesGdbm) {
  GdbmWatch gdbm;
  StandardErrorOf([&] {
    store_.Get(&value_, Datum("key"));
    store_.Put(Datum("key"), Datum("value"));
    store_.Del(Datum("key"));
    store_.First(&key_);
    store_.Next(&key_);
    store_.Sync();
    store_.Shrink();
    store_.Flush();
    store_.Close();
  });
  EXPECT_TRUE(gdbm.Calls().empty());
}

TEST_F(ClosedDatabaseTest, ErrorsAreCalledAsGdbmCallsThem) {
  for (int error : {0, 1, 7, 15, 1000}) {
    EXPECT_STREQ(Database::ErrorString(error), gdbm_strerror(error));
  }
  EXPECT_STREQ(Database::ErrorString(GDBM_ITEM_NOT_FOUND), "Item not found");
}

}  // namespace
}  // namespace kestan_tests
