#include "cli/index/index_errors.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace kestan_cli {
namespace {

TEST(IndexErrorsTest, MessagesNameTheIndexAndTheReason) {
  EXPECT_STREQ(CannotOpen("a\nb", "is a folder").what(), "cannot open index 'a\\nb': is a folder");
  EXPECT_EQ(CannotOpen("a", "is a folder").status(), kFailed);
  EXPECT_STREQ(CannotChange("a", "damaged").what(), "cannot change index 'a': damaged");
}

TEST(IndexErrorsTest, LockedIndexIsBusy) {
  const CommandError error = Locked("a", "has it open");
  EXPECT_STREQ(error.what(), "cannot open index 'a': another process has it open; try again later");
  EXPECT_EQ(error.status(), kBusy);
  EXPECT_EQ(StoreNotOpened("a", 9, 0).status(), kBusy);
  EXPECT_EQ(StoreNotOpened("a", 10, 0).status(), kBusy);
}

TEST(IndexErrorsTest, SystemGivesTheReasonWhereItRefusedTheFile) {
  EXPECT_STREQ(StoreNotOpened("a", 3, EACCES).what(), "cannot open index 'a': permission denied");
  EXPECT_STREQ(StoreNotOpened("a", 29, 0).what(),
               "cannot open index 'a': damaged; kestan repair saves what it still holds");
  EXPECT_STREQ(
      StoreNotOpened("a", 7, 0).what(),
      "cannot open index 'a': not an index file (Bad magic number); if it was one, see kestan "
      "repair");
}

TEST(IndexErrorsTest, FailedWriteLeavesTheIndexAloneIfItWasOnACopy) {
  const std::string in_place = CannotWrite("a", 4, false).what();
  EXPECT_EQ(in_place.find("cannot write to index 'a': a write failed, perhaps for want of room ("),
            0u)
      << in_place;
  EXPECT_EQ(CannotWrite("a", 4, true).what(), in_place + "; it is as it was");
  const std::string other = CannotWrite("a", 5, true).what();
  EXPECT_NE(other.find("; see kestan check"), std::string::npos) << other;
}

}  // namespace
}  // namespace kestan_cli
