#include <gtest/gtest.h>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class CheckCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat dog\n");
    Add("b", "cat\n");
  }
};

TEST_F(CheckCommandTest, GoodIndexHasNoFaults) {
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
  EXPECT_EQ(Run({"check", "my.index", "--json"}),
            Success("{\"schema\":1,\"faults\":0,\"notes\":0,\"lines\":[]}\n"));
}

TEST_F(CheckCommandTest, FaultsAreNamedAndTheStatusIsOne) {
  Plant(Path("my.index"), {{"g-code", Units({1})}});
  EXPECT_EQ(
      Run({"check", "my.index"}),
      (Outcome{1, "g-code: the counter 1 is below code 2, which is in use\n1 fault, 0 notes\n",
               ""}));
  EXPECT_EQ(Run({"check", "-q", "my.index"}), (Outcome{1, "", ""}));
}

}  // namespace
}  // namespace kestan_tests
