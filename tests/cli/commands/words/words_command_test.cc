#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using WordsCommandTest = CommandTest;

TEST_F(WordsCommandTest, WordsAreInOrderOfBytes) {
  Add("a", "dog cat dog\n");
  EXPECT_EQ(Run({"words", "my.index"}), Success("cat\ndog\n"));
}

TEST_F(WordsCommandTest, BoundsAreCountsOrShares) {
  Add("a", "cat dog\n");
  Add("b", "dog bird\n");
  EXPECT_EQ(Run({"words", "my.index", "--at-least", "2"}), Success("dog\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "1"}), Success("bird\ncat\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "0.5"}), Success("bird\ncat\n"));
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("2 dog\n1 bird\n1 cat\n"));
}

TEST_F(WordsCommandTest, InvalidBoundsAreErrors) {
  Add("a", "cat\n");
  for (const char* bound : {"many", "-1", "65536", "1x", ""}) {
    EXPECT_EQ(Run({"words", "my.index", std::string("--at-least=") + bound}).status, 2) << bound;
  }
}

TEST_F(WordsCommandTest, CountsLeaveOutRemovedDocuments) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("1 dog\n0 cat\n"));
}

// Other hosts may name a document so.
TEST_F(WordsCommandTest, DocumentWithALineFeedInItsNameCountsOnce) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    engine.AddDocumentWords("a\nb", "cat");
  }
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("1 cat\n"));
}

}  // namespace
}  // namespace kestan_tests
