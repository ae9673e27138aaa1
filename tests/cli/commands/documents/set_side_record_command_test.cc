#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class SetSideRecordCommandTest : public CommandTest {
 protected:
  void SetUp() override { Add("a", "The title\nthe summary\n"); }
};

TEST_F(SetSideRecordCommandTest, EachTextIsSetAndDeletedByItself) {
  for (const std::string kind : {"title", "summary", "user"}) {
    EXPECT_EQ(Run({kind, "set", "my.index", "a", "new " + kind}), Success(""));
    EXPECT_EQ(Run({kind, "get", "my.index", "a"}), Success("new " + kind + "\n"));
  }
  EXPECT_EQ(Run({"summary", "delete", "my.index", "a"}), Success(""));
  EXPECT_EQ(Run({"summary", "get", "my.index", "a"}),
            Failure("document 'a' of index 'my.index' has no summary"));
  EXPECT_EQ(Run({"title", "get", "my.index", "a"}), Success("new title\n"));
  EXPECT_EQ(Run({"user", "get", "my.index", "a"}), Success("new user\n"));
}

TEST_F(SetSideRecordCommandTest, UnknownDocumentHasItsOwnMessage) {
  const Outcome unknown = Failure("no document 'b' in index 'my.index'; see kestan list");
  EXPECT_EQ(Run({"title", "get", "my.index", "b"}), unknown);
  EXPECT_EQ(Run({"title", "set", "my.index", "b", "x"}), unknown);
  EXPECT_EQ(Run({"title", "delete", "my.index", "b"}), unknown);
}

}  // namespace
}  // namespace kestan_tests
