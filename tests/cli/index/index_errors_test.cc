// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/index_errors.h"

#include <gtest/gtest.h>

#include <kestan/results.h>

#include <cerrno>
#include <string>

namespace kestan_cli {
namespace {

using kestan::StoreError;

CommandError NotOpened(StoreError error, int system_error) {
  return StoreNotOpened("a", error, system_error);
}

TEST(IndexErrorsTest, MessagesNameTheIndexAndTheReason) {
  EXPECT_STREQ(CannotOpen("a\nb", "is a folder").what(), "cannot open index 'a\\nb': is a folder");
  EXPECT_EQ(CannotOpen("a", "is a folder").status(), kFailed);
  EXPECT_STREQ(CannotChange("a", "damaged").what(), "cannot change index 'a': damaged");
}

TEST(IndexErrorsTest, LockedIndexIsBusy) {
  const CommandError error = NotOpened(StoreError::kCannotBeReader, 0);
  EXPECT_STREQ(error.what(),
               "cannot open index 'a': another process is changing it; try again later");
  EXPECT_EQ(error.status(), kBusy);
}

TEST(IndexErrorsTest, SystemGivesTheReasonWhereItRefusedTheFile) {
  EXPECT_STREQ(NotOpened(StoreError::kFileOpen, EACCES).what(),
               "cannot open index 'a': permission denied");
  EXPECT_STREQ(NotOpened(StoreError::kNeedsRecovery, 0).what(),
               "cannot open index 'a': damaged; kestan repair saves what it still holds");
  EXPECT_STREQ(
      NotOpened(StoreError::kBadMagicNumber, 0).what(),
      "cannot open index 'a': not an index file (Bad magic number); if it was one, see kestan "
      "repair");
}

// ---- Of the search library ----

using kestan::search::Status;
using kestan::search::StatusCode;

TEST(IndexErrorsTest, StatusNamesTheIndexAndWhatHelps) {
  EXPECT_STREQ(ErrorOf({StatusCode::kSystem, "no space left on device"}, "a\nb").what(),
               "index 'a\\nb': no space left on device");
  EXPECT_STREQ(ErrorOf({StatusCode::kNotFound, "there is no index", "a"}, "a").what(),
               "index 'a': there is no index; kestan index makes one");
  EXPECT_STREQ(ErrorOf({StatusCode::kDamaged, "cut short", "a"}, "a").what(),
               "index 'a': cut short; see kestan check and kestan repair");
}

TEST(IndexErrorsTest, OnlyABusyIndexHasTheStatusOfOne) {
  const CommandError error = ErrorOf({StatusCode::kBusy, "process 7 is writing it", "a"}, "a");
  EXPECT_STREQ(error.what(), "index 'a': process 7 is writing it; try again later");
  EXPECT_EQ(error.status(), kBusy);
  for (const StatusCode code : {StatusCode::kNotFound, StatusCode::kDamaged, StatusCode::kSystem,
                                StatusCode::kVersion, StatusCode::kOutOfMemory}) {
    EXPECT_EQ(ErrorOf({code, "x"}, "a").status(), kFailed);
  }
}

TEST(IndexErrorsTest, FilesInTheIndexAreNamedByTheirNamesThere) {
  EXPECT_STREQ(ErrorOf({StatusCode::kSystem, "is a folder", "a/b/1.segment"}, "a/b").what(),
               "index 'a/b': is a folder (1.segment)");
  EXPECT_STREQ(ErrorOf({StatusCode::kSystem, "is a folder", "a/bc"}, "a/b").what(),
               "index 'a/b': is a folder (a/bc)");
  EXPECT_STREQ(ErrorOf({StatusCode::kSystem, "is a folder", "a/b/1.segment"}, "a/b/").what(),
               "index 'a/b/': is a folder (1.segment)");
}

TEST(IndexErrorsTest, ValuesPassAndErrorsAreThrown) {
  EXPECT_EQ(ValueOf(kestan::search::Result<int>(7), "a"), 7);
  EXPECT_NO_THROW(CheckStatus(Status(), "a"));
  EXPECT_THROW(CheckStatus({StatusCode::kSystem, "x"}, "a"), CommandError);
  EXPECT_THROW(ValueOf(kestan::search::Result<int>(Status(StatusCode::kSystem, "x")), "a"),
               CommandError);
}

}  // namespace
}  // namespace kestan_cli
