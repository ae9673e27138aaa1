// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

class DeleteSideRecordCommandTest : public IndexFolderTest {
 protected:
  void SetUp() override { AddDocument("a"); }
};

TEST_F(DeleteSideRecordCommandTest, DeletedTextCannotBeDeletedAgain) {
  EXPECT_EQ(Run({"title", "delete", "my.index", "a"}), Success(""));
  EXPECT_EQ(Run({"title", "delete", "my.index", "a"}),
            Failure("document 'a' of index 'my.index' has no title"));
  EXPECT_EQ(Find("a").title, "");
  EXPECT_EQ(Find("a").summary, "the summary");
}

TEST_F(DeleteSideRecordCommandTest, FailedDeletionLeavesTheIndexAlone) {
  ASSERT_EQ(Run({"summary", "delete", "my.index", "a"}).status, 0);
  const auto before = FolderBytes();
  EXPECT_EQ(Run({"user", "delete", "my.index", "b"}).status, 2);
  EXPECT_EQ(Run({"summary", "delete", "my.index", "a"}).status, 2);
  EXPECT_EQ(FolderBytes(), before);
}

}  // namespace
}  // namespace kestan_tests
