// SPDX-License-Identifier: GPL-3.0-or-later
// Copying between stores. tests/engine/copy_index_test.cc has the flushes.
#include <kestan/storage/walk/copy_records.h>

#include <gdbm.h>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

class CopyRecordsTest : public DatabaseTest {
 protected:
  // Copies into a store that has `records`, and returns what is in its file then.
  Records CopyInto(const Records& records) {
    Plant(target_path_, records);
    Database target;
    EXPECT_EQ(target.Open(target_path_.c_str(), 1), 0);
    kestan::CopyRecords(store_, target);
    target.Close();
    return Dump(target_path_);
  }

  const std::string target_path_ = folder_ / "target";
};

TEST_F(CopyRecordsTest, TargetHasTheRecordsOfBoth) {
  Put("a", "1");
  Put("b", "");
  EXPECT_EQ(CopyInto({{"a", "old"}, {"c", "3"}}), (Records{{"a", "1"}, {"b", ""}, {"c", "3"}}));
}

TEST_F(CopyRecordsTest, ChangesThatWaitAreCopiedAndStillWait) {
  Put("a", "1");
  Change(Held("a"), "2");
  EXPECT_EQ(CopyInto({}), (Records{{"a", "2"}}));
  EXPECT_EQ(InFile(), (Records{{"a", "1"}}));
  EXPECT_EQ(Stored(), (Records{{"a", "2"}}));
}

TEST_F(CopyRecordsTest, EndsAtARecordThatCannotBeRead) {
  PlantAndReopen({{"a", "1"}, {"b", "2"}, {"c", "3"}});
  GdbmWatch watch;
  watch.Fail("fetch", 2, GDBM_FILE_READ_ERROR);
  EXPECT_EQ(CopyInto({}).size(), 1u);
  EXPECT_EQ(store_.FileError(), GDBM_FILE_READ_ERROR);
}

}  // namespace
}  // namespace kestan_tests
