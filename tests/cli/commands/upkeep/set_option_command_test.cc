// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/index_folder_test.h"

namespace kestan_tests {
namespace {

class SetOptionCommandTest : public IndexFolderTest {
 protected:
  void SetUp() override {
    AddDocument("a", "cat dog");
    AddDocument("b", "cat");
  }

  std::string Flags() const { return *Read().Property("option-flags"); }
};

TEST_F(SetOptionCommandTest, FlagsAreSetAndCleared) {
  EXPECT_EQ(Run({"option", "set", "my.index", "6"}), Success(""));
  EXPECT_EQ(Flags(), "6");
  EXPECT_EQ(Run({"option", "clear", "my.index", "10"}), Success(""));
  EXPECT_EQ(Flags(), "4");
  EXPECT_EQ(Run({"option", "set", "my.index", "5"}),
            Failure("index 'my.index' has flags 4 set already"));
  EXPECT_EQ(Run({"option", "set", "my.index", "0"}),
            Failure("FLAGS takes a number from 1 to 4294967295, not '0'"));
  EXPECT_EQ(Run({"option", "clear", "my.index", "4"}), Success(""));
  EXPECT_EQ(Flags(), "");
  EXPECT_TRUE(Read().Statistics().with_positions);
}

TEST_F(SetOptionCommandTest, HighestFlagIsKept) {
  EXPECT_EQ(Run({"option", "set", "my.index", "4294967294"}), Success(""));
  EXPECT_EQ(Flags(), "4294967294");
  EXPECT_EQ(Run({"option", "set", "my.index", "2147483648"}),
            Failure("index 'my.index' has flags 2147483648 set already"));
}

TEST_F(SetOptionCommandTest, PositionsDoNotComeBack) {
  ASSERT_EQ(*Read().Count("\"dog cat\""), 0u);
  EXPECT_EQ(Run({"option", "set", "my.index", "5"}), Success(""));
  EXPECT_EQ(Flags(), "4");
  EXPECT_FALSE(Read().Statistics().with_positions);
  EXPECT_EQ(*Read().Count("\"dog cat\""), 1u);
  EXPECT_EQ(*Read().Count("cat"), 2u);
  EXPECT_EQ(Run({"option", "clear", "my.index", "5"}),
            Failure("flag 1 of index 'my.index' cannot be cleared: the positions of its words are "
                    "gone"));
  EXPECT_EQ(Run({"option", "set", "my.index", "1"}),
            Failure("index 'my.index' has flags 1 set already"));
  EXPECT_EQ(Run({"option", "clear", "my.index", "4"}), Success(""));
  EXPECT_EQ(Flags(), "");
}

TEST_F(SetOptionCommandTest, PropertyThatIsNoNumberCountsAsNoFlags) {
  {
    kestan::search::IndexWriter writer = WriterOf(Path("my.index"));
    writer.SetProperty("option-flags", "many");
    ASSERT_TRUE(writer.Commit().ok());
  }
  EXPECT_EQ(Run({"option", "set", "my.index", "2"}), Success(""));
  EXPECT_EQ(Flags(), "2");
}

TEST_F(SetOptionCommandTest, IndexOfOneFileIsLeftAlone) {
  MakeOneFileIndex();
  EXPECT_EQ(Run({"option", "set", "one.index", "2"}), OneFileIsReadOnly());
  EXPECT_EQ(Run({"option", "clear", "one.index", "2"}), OneFileIsReadOnly());
}

}  // namespace
}  // namespace kestan_tests
