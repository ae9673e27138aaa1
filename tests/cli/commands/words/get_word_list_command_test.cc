#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class GetWordListCommandTest : public CommandTest {
 protected:
  void SetUp() override { Add("a", "cat\n"); }
};

TEST_F(GetWordListCommandTest, JsonHasTheWords) {
  ASSERT_EQ(Run({"wordlist", "put", "my.index", "l", "red", "blue"}).status, 0);
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "l", "--json"}),
            Success("{\"schema\":1,\"list\":\"l\",\"words\":[\"red\",\"blue\"]}\n"));
}

TEST_F(GetWordListCommandTest, TextHasOneWordALine) {
  ASSERT_EQ(Run({"wordlist", "put", "my.index", "l", "red blue"}).status, 0);
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "l"}), Success("red\nblue\n"));
}

TEST_F(GetWordListCommandTest, UnknownListIsAnError) {
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "none"}),
            Failure("no word list 'none' in index 'my.index'"));
}

}  // namespace
}  // namespace kestan_tests
