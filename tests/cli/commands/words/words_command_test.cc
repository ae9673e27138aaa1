// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class WordsCommandTest : public BothKindsTest {};

INSTANTIATE_TEST_SUITE_P(, WordsCommandTest, kBothKinds, NameOfKind);

TEST_P(WordsCommandTest, WordsAreInOrderOfBytes) {
  Add("a", "dog cat dog\n");
  EXPECT_EQ(Run({"words", "my.index"}), Success("cat\ndog\n"));
}

TEST_P(WordsCommandTest, BoundsAreCountsOrShares) {
  Add("a", "cat dog\n");
  Add("b", "dog bird\n");
  EXPECT_EQ(Run({"words", "my.index", "--at-least", "2"}), Success("dog\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "1"}), Success("bird\ncat\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "0.5"}), Success("bird\ncat\n"));
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("2 dog\n1 bird\n1 cat\n"));
}

TEST_P(WordsCommandTest, InvalidBoundsAreErrors) {
  Add("a", "cat\n");
  for (const char* bound : {"many", "-1", "1e16", "nan", "1x", ""}) {
    EXPECT_EQ(Run({"words", "my.index", std::string("--at-least=") + bound}).status, 2) << bound;
  }
}

TEST_P(WordsCommandTest, RemovedDocumentsDoNotCount) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  Remove("a");
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("1 dog\n"));
}

TEST_P(WordsCommandTest, SharesAreRounded) {
  for (const char* name : {"a", "b", "c"}) Add(name, name[0] == 'a' ? "cat dog\n" : "dog\n");
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "0.5"}), Success("cat\n"));   // at most 2
  EXPECT_EQ(Run({"words", "my.index", "--at-least", "0.8"}), Success("dog\n"));  // at least 2
}

TEST_P(WordsCommandTest, BoundsCountLivingDocuments) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  Remove("a");
  EXPECT_EQ(Run({"words", "my.index", "--at-most", "1"}), Success("dog\n"));
  EXPECT_EQ(Run({"words", "my.index", "--at-least", "2"}), Success(""));
}

TEST_P(WordsCommandTest, JsonHasCountsTheMostFrequentFirst) {
  Add("a", "cat dog\n");
  Add("b", "dog\n");
  EXPECT_EQ(Run({"words", "my.index", "--json"}),
            Success("{\"schema\":1,\"words\":[{\"word\":\"dog\",\"documents\":2},"
                    "{\"word\":\"cat\",\"documents\":1}]}\n"));
}

// Other hosts may name a document so.
TEST_P(WordsCommandTest, DocumentWithALineFeedInItsNameCountsOnce) {
  Add("a\nb", "cat");
  EXPECT_EQ(Run({"words", "my.index", "--counts"}), Success("1 cat\n"));
}

}  // namespace
}  // namespace kestan_tests
