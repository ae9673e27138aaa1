#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class DeleteSideRecordCommandTest : public CommandTest {
 protected:
  void SetUp() override { Add("a", "The title\nthe summary\n"); }
};

TEST_F(DeleteSideRecordCommandTest, DeletedTextCannotBeDeletedAgain) {
  EXPECT_EQ(Run({"title", "delete", "my.index", "a"}), Success(""));
  EXPECT_EQ(Run({"title", "delete", "my.index", "a"}),
            Failure("document 'a' of index 'my.index' has no title"));
  EXPECT_EQ(Dump(Path("my.index")).count("t-a"), 0u);
}

TEST_F(DeleteSideRecordCommandTest, FailedDeletionLeavesTheIndexAlone) {
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"user", "delete", "my.index", "b"}).status, 2);
  EXPECT_EQ(IndexBytes(), before);
}

}  // namespace
}  // namespace kestan_tests
