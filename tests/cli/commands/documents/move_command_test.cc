#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class MoveCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat\nsummary\n");
    Add("b", "cat\n");
  }
};

TEST_F(MoveCommandTest, SideRecordsAreMovedToo) {
  EXPECT_EQ(Run({"move", "my.index", "a", "z"}), Success(""));
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\nz\n"));
  EXPECT_EQ(Run({"title", "get", "my.index", "z"}), Success("cat\n"));
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
}

TEST_F(MoveCommandTest, NameOfAnotherDocumentNeedsReplace) {
  EXPECT_EQ(Run({"move", "my.index", "a", "b"}),
            Failure("index 'my.index' has a document 'b' already; --replace removes it first"));
  EXPECT_EQ(Run({"move", "my.index", "a", "b", "--replace"}), Success(""));
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
}

TEST_F(MoveCommandTest, MoveToItsOwnNameChangesNothing) {
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"move", "my.index", "a", "a"}), Success(""));
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(MoveCommandTest, UnknownDocumentIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "x", "y"}),
            Failure("no document 'x' in index 'my.index'; see kestan list"));
}

TEST_F(MoveCommandTest, EmptyNameIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "a", ""}), Failure("the new name is empty"));
}

TEST_F(MoveCommandTest, NameOfTwoLinesIsAnError) {
  EXPECT_EQ(Run({"move", "my.index", "a", "b\nc"}),
            Failure("the name 'b\\nc' holds a line feed, and documents are listed one a line"));
}

}  // namespace
}  // namespace kestan_tests
