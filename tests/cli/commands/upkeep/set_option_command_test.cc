#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class SetOptionCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat\nsummary\n");
    Add("b", "cat\n");
  }
};

TEST_F(SetOptionCommandTest, FlagsAreSetAndCleared) {
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("0\n"));
  EXPECT_EQ(Run({"option", "set", "my.index", "6"}), Success(""));
  EXPECT_EQ(Run({"option", "clear", "my.index", "2"}), Success(""));
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("4\n"));
  EXPECT_EQ(Run({"option", "set", "my.index", "5"}),
            Failure("index 'my.index' has flags 4 set already"));
  EXPECT_EQ(Run({"option", "set", "my.index", "0"}),
            Failure("FLAGS takes a number from 1 to 4294967295, not '0'"));
}

TEST_F(SetOptionCommandTest, PositionsDoNotComeBack) {
  EXPECT_EQ(Run({"option", "set", "my.index", "1"}), Success(""));
  EXPECT_EQ(Run({"option", "get", "my.index", "--json"}),
            Success("{\"schema\":1,\"flags\":1,\"positions_kept\":false}\n"));
  EXPECT_EQ(Run({"option", "clear", "my.index", "1"}),
            Failure("flag 1 of index 'my.index' cannot be cleared: the positions of its words are "
                    "gone"));
}

}  // namespace
}  // namespace kestan_tests
