#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class UpkeepCommandsTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat\nsummary\n");
    Add("b", "cat\n");
  }
};

TEST_F(UpkeepCommandsTest, RemoveTellsHowMany) {
  EXPECT_EQ(Run({"remove", "my.index", "a"}), Success("removed 1 document\n"));
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
}

TEST_F(UpkeepCommandsTest, RemoveTellsHowManyAsJsonOrNotAtAll) {
  EXPECT_EQ(Run({"remove", "--json", "my.index", "a"}), Success("{\"schema\":1,\"removed\":1}\n"));
  EXPECT_EQ(Run({"remove", "-q", "my.index", "b"}), Success(""));
}

TEST_F(UpkeepCommandsTest, RemoveTakesANameTwiceForOne) {
  EXPECT_EQ(Run({"remove", "my.index", "b", "a", "b"}), Success("removed 2 documents\n"));
  EXPECT_EQ(Dump(Path("my.index")).at("g-deleted"), Units({1, 2}));
}

TEST_F(UpkeepCommandsTest, RemoveTakesSideRecordsAlong) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.DBPutUser("a", "mine"), 0);
  }
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  const Records records = Dump(Path("my.index"));
  for (const char* key : {"d-a", "t-a", "s-a", "u-a"}) EXPECT_EQ(records.count(key), 0u) << key;
  for (const char* key : {"d-b", "t-b", "s-b"}) EXPECT_EQ(records.count(key), 1u) << key;
}

TEST_F(UpkeepCommandsTest, UnknownNameIsFoundBeforeAnythingIsRemoved) {
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"remove", "my.index", "a", "c"}),
            Failure("no document 'c' in index 'my.index'; see kestan list"));
  EXPECT_EQ(Run({"remove", "my.index", "a", "b\nc"}),
            Failure("no document 'b\\nc' in index 'my.index'; see kestan list"));
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(UpkeepCommandsTest, RemovedDocumentCannotBeRemovedAgain) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"remove", "my.index", "a"}),
            Failure("no document 'a' in index 'my.index'; see kestan list"));
}

TEST_F(UpkeepCommandsTest, ShrinkTellsTheSizes) {
  Add("large", std::string(200000, 'x') + " y " + std::string(60, 'z'));
  ASSERT_EQ(Run({"remove", "my.index", "large"}).status, 0);
  const auto before = std::filesystem::file_size(Path("my.index"));
  const Outcome outcome = Run({"shrink", "my.index"});
  const auto after = std::filesystem::file_size(Path("my.index"));
  EXPECT_EQ(outcome, Success("shrunk from " + std::to_string(before) + " to " +
                             std::to_string(after) + " bytes\n"));
}

TEST_F(UpkeepCommandsTest, ShrinkGivesRoomBack) {
  std::string text;
  for (int i = 0; i < 17576; ++i) {
    text += {static_cast<char>('a' + i / 676), static_cast<char>('a' + i / 26 % 26),
             static_cast<char>('a' + i % 26), ' '};
  }
  // A file that stays the same would not be indexed again.
  for (unsigned i = 0; i < 3; ++i) Add("large", text + std::string(i, '\n'));
  const auto before = std::filesystem::file_size(Path("my.index"));
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_LT(std::filesystem::file_size(Path("my.index")), before);
  EXPECT_EQ(Run({"search", "my.index", "aaa"}), Success("100 large\n"));
}

TEST_F(UpkeepCommandsTest, ShrinkMakesCodesReusable) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Dump(Path("my.index")).at("g-avail"), Units({1}));
  Add("c", "cat\n");
  EXPECT_EQ(Run({"search", "my.index", "cat"}), Success("100 c\n100 b\n"));
}

TEST_F(UpkeepCommandsTest, ShrinkFollowsALinkToTheIndex) {
  std::filesystem::create_symlink("my.index", Path("link"));
  ASSERT_EQ(Run({"remove", "link", "a"}).status, 0);
  ASSERT_EQ(Run({"shrink", "link"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(Dump(Path("my.index")).count("g-deleted"), 0u);
}

TEST_F(UpkeepCommandsTest, DryRunTellsWhatAShrinkWouldGiveBackAndChangesNothing) {
  Add("large", std::string(200000, 'x') + " y " + std::string(60, 'z'));
  ASSERT_EQ(Run({"remove", "my.index", "large"}).status, 0);
  const std::string before = IndexBytes();
  const Outcome dry = Run({"shrink", "-n", "my.index"});
  EXPECT_EQ(IndexBytes(), before);
  const Outcome shrunk = Run({"shrink", "my.index"});
  EXPECT_EQ(dry.out, "would shrink" + shrunk.out.substr(6));
}

TEST_F(UpkeepCommandsTest, MoveTakesTheTextsAlong) {
  EXPECT_EQ(Run({"move", "my.index", "a", "z"}), Success(""));
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\nz\n"));
  EXPECT_EQ(Run({"title", "get", "my.index", "z"}), Success("cat\n"));
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
}

TEST_F(UpkeepCommandsTest, MoveOntoAnotherDocumentWantsToBeTold) {
  EXPECT_EQ(Run({"move", "my.index", "a", "b"}),
            Failure("index 'my.index' has a document 'b' already; --replace removes it first"));
  EXPECT_EQ(Run({"move", "my.index", "a", "b", "--replace"}), Success(""));
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
}

TEST_F(UpkeepCommandsTest, MoveToItsOwnNameChangesNothing) {
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"move", "my.index", "a", "a"}), Success(""));
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(UpkeepCommandsTest, MoveOfAnUnknownDocumentIsTold) {
  EXPECT_EQ(Run({"move", "my.index", "x", "y"}),
            Failure("no document 'x' in index 'my.index'; see kestan list"));
}

TEST_F(UpkeepCommandsTest, EmptyNameIsRefused) {
  EXPECT_EQ(Run({"move", "my.index", "a", ""}), Failure("the new name is empty"));
}

TEST_F(UpkeepCommandsTest, NameOfTwoLinesIsRefused) {
  EXPECT_EQ(Run({"move", "my.index", "a", "b\nc"}),
            Failure("the name 'b\\nc' holds a line feed, and documents are listed one a line"));
}

TEST_F(UpkeepCommandsTest, FlagsAreSetAndCleared) {
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("0\n"));
  EXPECT_EQ(Run({"option", "set", "my.index", "6"}), Success(""));
  EXPECT_EQ(Run({"option", "clear", "my.index", "2"}), Success(""));
  EXPECT_EQ(Run({"option", "get", "my.index"}), Success("4\n"));
  EXPECT_EQ(Run({"option", "set", "my.index", "5"}),
            Failure("index 'my.index' has flags 4 set already"));
  EXPECT_EQ(Run({"option", "set", "my.index", "0"}),
            Failure("FLAGS takes a number from 1 to 4294967295, not '0'"));
}

TEST_F(UpkeepCommandsTest, PositionsDoNotComeBack) {
  EXPECT_EQ(Run({"option", "set", "my.index", "1"}), Success(""));
  EXPECT_EQ(Run({"option", "get", "my.index", "--json"}),
            Success("{\"schema\":1,\"flags\":1,\"positions_kept\":false}\n"));
  EXPECT_EQ(Run({"option", "clear", "my.index", "1"}),
            Failure("flag 1 of index 'my.index' cannot be cleared: the positions of its words are "
                    "gone"));
}

}  // namespace
}  // namespace kestan_tests
