// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/endless_input.h"

namespace kestan_tests {
namespace {

class PutWordListCommandTest : public EndlessInputTest {
 protected:
  void SetUp() override { AddDocument("a"); }

  // The words of a list, each followed by a line feed.
  std::string List(const std::string& name) const { return *Read().Property("wordlist:" + name); }
};

TEST_F(PutWordListCommandTest, WordsKeepTheirOrder) {
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "colours", "red", "reddish", "blue"}), Success(""));
  EXPECT_EQ(List("colours"), "red\nreddish\nblue\n");
  EXPECT_EQ(List("shapes"), "");
}

TEST_F(PutWordListCommandTest, ListTakesThePlaceOfAnEarlierOne) {
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "colours", "red", "blue"}), Success(""));
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "colours", "green"}), Success(""));
  EXPECT_EQ(List("colours"), "green\n");
}

TEST_F(PutWordListCommandTest, ListWithoutWordsIsTakenAway) {
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "colours", "red"}), Success(""));
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "colours", " "}), Success(""));
  EXPECT_EQ(List("colours"), "");
}

TEST_F(PutWordListCommandTest, IndexOfOneFileIsLeftAlone) {
  MakeOneFileIndex();
  EXPECT_EQ(Run({"wordlist", "put", "one.index", "colours", "red"}), OneFileIsReadOnly());
}

TEST_F(PutWordListCommandTest, WordsThatAListCannotKeepAreErrors) {
  const std::string longest(127, 'x');
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "names", longest}), Success(""));
  const auto before = FolderBytes();
  EXPECT_EQ(
      Run({"wordlist", "put", "my.index", "names", "a", longest + "y"}),
      Failure("the word '" + longest + "y' has 128 bytes; a list keeps words of at most 127"));
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "names", "a", "caf\xc3\xa9"}),
            Failure("the word 'caf\xc3\xa9' is not in ASCII; a list keeps no others"));
  EXPECT_EQ(FolderBytes(), before);
  EXPECT_EQ(List("names"), longest + "\n");
}

TEST_F(PutWordListCommandTest, WordsAreReadFromTheStandardInput) {
  Write("words", "round\nsquare  flat\n");
  const auto from_file = [this] {
    dup2(open(Path("words").c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  };
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "shapes"}, from_file), Success(""));
  EXPECT_EQ(List("shapes"), "round\nsquare\nflat\n");
}

TEST_F(PutWordListCommandTest, ListThatCannotBeReadIsNotKept) {
  const auto from_folder = [] { dup2(open(".", O_RDONLY | O_CLOEXEC), STDIN_FILENO); };
  EXPECT_EQ(Run({"wordlist", "put", "my.index", "shapes"}, from_folder),
            Failure("cannot read the standard input: is a folder"));
  EXPECT_EQ(List("shapes"), "");
}

TEST_F(PutWordListCommandTest, EndlessInputIsNotReadToItsEnd) {
  Outcome outcome;
  EXPECT_LT(FeedEndlessly({"wordlist", "put", "my.index", "l"}, "", 100 * kMiB, &outcome),
            66 * kMiB);
  EXPECT_EQ(outcome, Failure("the standard input holds more than 67108864 bytes"));
}

}  // namespace
}  // namespace kestan_tests
