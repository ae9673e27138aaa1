#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class TextCommandsTest : public CommandTest {
 protected:
  void SetUp() override { Add("a", "The title\nthe summary\n"); }
};

TEST_F(TextCommandsTest, GetPrintsTheText) {
  EXPECT_EQ(Run({"title", "get", "my.index", "a"}), Success("The title\n"));
  EXPECT_EQ(Run({"summary", "get", "my.index", "a"}), Success("the summary\n"));
}

TEST_F(TextCommandsTest, EachTextIsSetAndDeletedForItself) {
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

TEST_F(TextCommandsTest, UnknownDocumentIsToldApart) {
  const Outcome unknown = Failure("no document 'b' in index 'my.index'");
  EXPECT_EQ(Run({"title", "get", "my.index", "b"}), unknown);
  EXPECT_EQ(Run({"title", "set", "my.index", "b", "x"}), unknown);
  EXPECT_EQ(Run({"title", "delete", "my.index", "b"}),
            Failure("document 'b' of index 'my.index' has no title"));
}

TEST_F(TextCommandsTest, GroupWithoutACommandIsRefused) {
  for (const char* group : {"title", "summary", "user", "wordlist", "option"}) {
    EXPECT_EQ(Run({group}).status, 2) << group;
    EXPECT_EQ(Run({group, "--help"}).status, 0) << group;
  }
}

TEST_F(TextCommandsTest, WordListComesBackInItsOrder) {
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "colours", "red", "reddish", "blue"}), Success(""));
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "colours"}), Success("red\nreddish\nblue\n"));
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "shapes"}),
            Failure("no word list 'shapes' in index 'my.index'"));
}

TEST_F(TextCommandsTest, WordListIsReadFromTheStandardInput) {
  Write("words", "round\nsquare  flat\n");
  const auto from_file = [this] {
    dup2(open(Path("words").c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  };
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "shapes"}, from_file), Success(""));
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "shapes"}), Success("round\nsquare\nflat\n"));
}

}  // namespace
}  // namespace kestan_tests
