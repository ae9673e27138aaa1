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
  EXPECT_EQ(Run({"remove", "my.index", "a", "c"}), Failure("no document 'c' in index 'my.index'"));
  EXPECT_EQ(Run({"remove", "my.index", "a", "b\nc"}),
            Failure("no document 'b\\nc' in index 'my.index'"));
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(UpkeepCommandsTest, RemovedDocumentCannotBeRemovedAgain) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"remove", "my.index", "a"}), Failure("no document 'a' in index 'my.index'"));
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
  for (int i = 0; i < 3; ++i) Add("large", text);
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

}  // namespace
}  // namespace kestan_tests
