#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class GetSideRecordCommandTest : public CommandTest {
 protected:
  void SetUp() override { Add("a", "The title\nthe summary\n"); }
};

TEST_F(GetSideRecordCommandTest, GetPrintsTheText) {
  EXPECT_EQ(Run({"title", "get", "my.index", "a"}), Success("The title\n"));
  EXPECT_EQ(Run({"summary", "get", "my.index", "a"}), Success("the summary\n"));
}

TEST_F(GetSideRecordCommandTest, JsonHasTheText) {
  EXPECT_EQ(Run({"title", "get", "my.index", "a", "--json"}),
            Success("{\"schema\":1,\"name\":\"a\",\"title\":\"The title\"}\n"));
}

TEST_F(GetSideRecordCommandTest, GroupWithoutACommandIsAnError) {
  for (const char* group : {"title", "summary", "user", "wordlist", "option"}) {
    EXPECT_EQ(Run({group}).status, 2) << group;
    EXPECT_EQ(Run({group, "--help"}).status, 0) << group;
  }
}

}  // namespace
}  // namespace kestan_tests
