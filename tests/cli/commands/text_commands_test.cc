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

TEST_F(TextCommandsTest, TextsAndListsArePrintedAsJsonToo) {
  EXPECT_EQ(Run({"title", "get", "my.index", "a", "--json"}),
            Success("{\"schema\":1,\"name\":\"a\",\"title\":\"The title\"}\n"));
  ASSERT_EQ(Run({"wordlist", "put", "my.index", "l", "red", "blue"}).status, 0);
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "l", "--json"}),
            Success("{\"schema\":1,\"list\":\"l\",\"words\":[\"red\",\"blue\"]}\n"));
}

TEST_F(TextCommandsTest, UnknownDocumentIsToldApart) {
  const Outcome unknown = Failure("no document 'b' in index 'my.index'; see kestan list");
  EXPECT_EQ(Run({"title", "get", "my.index", "b"}), unknown);
  EXPECT_EQ(Run({"title", "set", "my.index", "b", "x"}), unknown);
  EXPECT_EQ(Run({"title", "delete", "my.index", "b"}), unknown);
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

TEST_F(TextCommandsTest, WordsThatAListCannotKeepAreRefused) {
  const std::string longest(127, 'x');
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "names", longest}), Success(""));
  const std::string before = IndexBytes();
  EXPECT_EQ(
      Run({"wordlist", "put", "my.index", "names", "a", longest + "y"}),
      Failure("the word '" + longest + "y' has 128 bytes; a list keeps words of at most 127"));
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "names", "a", "caf\xc3\xa9"}),
            Failure("the word 'caf\xc3\xa9' is not in ASCII; a list keeps no others"));
  EXPECT_EQ(IndexBytes(), before);
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "names"}), Success(longest + "\n"));
}

TEST_F(TextCommandsTest, WordListIsReadFromTheStandardInput) {
  Write("words", "round\nsquare  flat\n");
  const auto from_file = [this] {
    dup2(open(Path("words").c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  };
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "shapes"}, from_file), Success(""));
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "shapes"}), Success("round\nsquare\nflat\n"));
}

TEST_F(TextCommandsTest, WordListThatCannotBeReadIsNotKept) {
  const auto from_folder = [] { dup2(open(".", O_RDONLY | O_CLOEXEC), STDIN_FILENO); };
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "shapes"}, from_folder),
            Failure("cannot read the standard input: is a folder"));
  EXPECT_EQ(Run({"wordlist", "get", "my.index", "shapes"}).status, 2);
}

}  // namespace
}  // namespace kestan_tests
