// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/drop_positions.h>

#include <gdbm.h>

#include "tests/indexing/planting.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_tests {
namespace {

class DropPositionsTest : public testing::Test {
 protected:
  void Open(const Records& records) {
    Plant(path_, records);
    ASSERT_EQ(store_.Open(path_.c_str(), 1), 0);
  }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  Database store_;
  kestan::Vector<DBDatumPtr> records_;
};

TEST_F(DropPositionsTest, RecordsOfWordsLoseTheirPositions) {
  const Records others{{"t-title", EncodedPosting(1, {2})}, {"g-code", Units({2})}};
  Open(others + Records{{"cat", EncodedPosting(1, {1, 3}) + EncodedPosting(2, {1})},
                        {"t-", EncodedPosting(2, {4})}});
  ASSERT_TRUE(kestan::FetchPostingRecords(store_, &records_));
  EXPECT_EQ(records_.size(), 2u);
  kestan::DropAllPositions(records_);
  records_.clear();
  store_.Close();
  EXPECT_EQ(Dump(path_), others + (Records{{"cat", Units({1, 2})}, {"t-", Units({2})}}));
}

TEST_F(DropPositionsTest, NothingReachesTheFileBeforeAFlush) {
  Open({{"cat", EncodedPosting(1, {1})}});
  GdbmWatch watch;
  ASSERT_TRUE(kestan::FetchPostingRecords(store_, &records_));
  kestan::DropAllPositions(records_);
  EXPECT_EQ(watch.Count("store"), 0u);
  store_.Flush();
  EXPECT_EQ(watch.Count("store"), 1u);
}

TEST_F(DropPositionsTest, RecordOfAnyKindThatCannotBeReadIsNoticed) {
  Open({{"cat", EncodedPosting(1, {1})}, {"t-title", "x"}});
  for (int nth = 1; nth <= 2; ++nth) {
    store_.Flush();
    GdbmWatch watch;
    watch.Fail("fetch", nth, GDBM_FILE_READ_ERROR);
    kestan::Vector<DBDatumPtr> records;
    EXPECT_FALSE(kestan::FetchPostingRecords(store_, &records)) << nth;
  }
}

}  // namespace
}  // namespace kestan_tests
