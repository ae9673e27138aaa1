// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/walk/same_records.h>

#include <gdbm.h>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

using kestan::HaveSameRecords;

class HaveSameRecordsTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    ASSERT_EQ(other_.Open(other_path_.c_str(), 1), 0);
  }

  // Returns whether files of these records are the same, which does not depend on which is first.
  bool AreSame(const Records& records, const Records& other) {
    PlantAndReopen(records);
    other_.Close();
    Plant(other_path_, other);
    EXPECT_EQ(other_.Open(other_path_.c_str(), 1), 0);
    const bool are_same = HaveSameRecords(store_, other_);
    EXPECT_EQ(HaveSameRecords(other_, store_), are_same);
    return are_same;
  }

  const std::string other_path_ = folder_ / "other";
  Database other_;
};

TEST_F(HaveSameRecordsTest, EmptyStoresDo) { EXPECT_TRUE(AreSame({}, {})); }

TEST_F(HaveSameRecordsTest, KeysAndValuesCount) {
  const Records records{{"a", "1"}, {"b", ""}, {"", "2"}};
  EXPECT_TRUE(AreSame(records, records));
  EXPECT_FALSE(AreSame(records, {{"a", "1"}, {"b", "x"}, {"", "2"}}));
  EXPECT_FALSE(AreSame(records, {{"a", "2"}, {"b", ""}, {"", "2"}}));
  EXPECT_FALSE(AreSame(records, {{"a", "1"}, {"c", ""}, {"", "2"}}));
}

TEST_F(HaveSameRecordsTest, RecordThatOnlyOneHasIsADifference) {
  EXPECT_FALSE(AreSame({{"a", "1"}}, {{"a", "1"}, {"b", ""}}));
  EXPECT_FALSE(AreSame({}, {{"a", ""}}));
}

TEST_F(HaveSameRecordsTest, ChangesThatWaitAreCompared) {
  ASSERT_TRUE(AreSame({{"a", "1"}}, {{"a", "1"}}));
  Change(Held("a"), "2");
  EXPECT_FALSE(HaveSameRecords(store_, other_));
}

TEST_F(HaveSameRecordsTest, StoreIsTheSameAsItself) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}});
  EXPECT_TRUE(HaveSameRecords(store_, store_));
}

TEST_F(HaveSameRecordsTest, RecordThatCannotBeReadIsADifference) {
  const Records records{{"a", "1"}, {"b", "2"}};
  ASSERT_TRUE(AreSame(records, records));
  for (int nth = 1; nth <= 8; ++nth) {  // each record is read once from each file, and again
    store_.Flush();
    other_.Flush();
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_FILE_READ_ERROR);
    const bool are_same = HaveSameRecords(store_, other_);
    EXPECT_EQ(are_same, watch.Count("fetch") < static_cast<std::size_t>(nth)) << nth;
  }
}

TEST_F(HaveSameRecordsTest, BucketThatCannotBeReadIsADifference) {
  ASSERT_TRUE(AreSame({{"a", "1"}}, {{"a", "1"}}));
  GdbmWatch watch;
  watch.Fail("firstkey", 1, GDBM_FILE_READ_ERROR);
  EXPECT_FALSE(HaveSameRecords(store_, other_));
}

TEST_F(HaveSameRecordsTest, ManyRecordsAreFlushedOnTheWay) {
  Records records;
  for (int i = 0; i < 2500; ++i) records["key" + std::to_string(i)] = "value";
  ASSERT_TRUE(AreSame(records, records));
  GdbmWatch watch;
  EXPECT_TRUE(HaveSameRecords(store_, other_));
  EXPECT_EQ(watch.Count("sync"), 8u);  // both stores, twice in each of two walks
}

TEST_F(HaveSameRecordsTest, StoreThatIsNotOpenIsLikeNone) {
  other_.Close();
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_FALSE(HaveSameRecords(store_, other_)); }),
            "Kestan: Call to database::size without an open database\n");
  EXPECT_EQ(StandardErrorOf([&] { EXPECT_FALSE(HaveSameRecords(other_, other_)); }),
            "Kestan: Call to database::size without an open database\n");
}

}  // namespace
}  // namespace kestan_tests
