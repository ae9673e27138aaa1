// SPDX-License-Identifier: GPL-3.0-or-later
// When a long run over many records flushes the store.
#include <kestan/storage/walk/flush_policy.h>

#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

class RunFlushesTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(store_.Open((folder_ / "file").c_str(), 1), 0); }

  // Notes `count` records of `bytes` bytes each.
  //   Returns  how often the store was flushed.
  std::size_t FlushesOf(std::size_t count, std::size_t bytes) {
    const GdbmWatch watch;
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(cadence_.Note(bytes), 0);
    return watch.Count("sync");
  }

  TempDir folder_;
  Database store_;
  kestan::PeriodicFlush cadence_{store_};
};

TEST_F(RunFlushesTest, ComeAfterEach1000Records) {
  EXPECT_EQ(FlushesOf(999, 1), 0U);
  EXPECT_EQ(FlushesOf(1, 1), 1U);
  EXPECT_EQ(FlushesOf(999, 1), 0U);
  EXPECT_EQ(FlushesOf(1, 1), 1U);
}

TEST_F(RunFlushesTest, ComeAfterEach16MillionBytes) {
  constexpr std::size_t kBytes = std::size_t{1} << 24;
  EXPECT_EQ(FlushesOf(1, kBytes - 1), 0U);
  EXPECT_EQ(FlushesOf(1, 1), 1U);
  EXPECT_EQ(FlushesOf(1, kBytes - 1), 0U);
  EXPECT_EQ(FlushesOf(1, kBytes), 1U);
}

TEST_F(RunFlushesTest, GiveTheirErrorsBack) {
  ASSERT_EQ(store_.Put(Datum("key"), Datum("value")), 0);
  DBDatumPtr value;
  ASSERT_EQ(store_.Get(&value, Datum("key")), 0);
  value.ptr->dirty = true;
  GdbmWatch watch;
  watch.Fail("store", 1, GDBM_FILE_WRITE_ERROR);
  testing::internal::CaptureStderr();
  EXPECT_EQ(cadence_.Note(std::size_t{1} << 24), GDBM_FILE_WRITE_ERROR);
  EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, 36),
            "Kestan: Could not write item 'key' -");
}

}  // namespace
}  // namespace kestan_tests
