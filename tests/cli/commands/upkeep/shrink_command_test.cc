#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class ShrinkCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat\nsummary\n");
    Add("b", "cat\n");
  }
};

TEST_F(ShrinkCommandTest, ReportsTheSizes) {
  Add("large", std::string(200000, 'x') + " y " + std::string(60, 'z'));
  ASSERT_EQ(Run({"remove", "my.index", "large"}).status, 0);
  const auto before = std::filesystem::file_size(Path("my.index"));
  const Outcome outcome = Run({"shrink", "my.index"});
  const auto after = std::filesystem::file_size(Path("my.index"));
  EXPECT_EQ(outcome, Success("shrunk from " + std::to_string(before) + " to " +
                             std::to_string(after) + " bytes\n"));
}

TEST_F(ShrinkCommandTest, FileGetsSmaller) {
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

TEST_F(ShrinkCommandTest, CodesBecomeReusable) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Dump(Path("my.index")).at("g-avail"), Units({1}));
  Add("c", "cat\n");
  EXPECT_EQ(Run({"search", "my.index", "cat"}), Success("100 c\n100 b\n"));
}

TEST_F(ShrinkCommandTest, FollowsALinkToTheIndex) {
  std::filesystem::create_symlink("my.index", Path("link"));
  ASSERT_EQ(Run({"remove", "link", "a"}).status, 0);
  ASSERT_EQ(Run({"shrink", "link"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(Dump(Path("my.index")).count("g-deleted"), 0u);
}

TEST_F(ShrinkCommandTest, DryRunReportsTheSizesAndChangesNothing) {
  Add("large", std::string(200000, 'x') + " y " + std::string(60, 'z'));
  ASSERT_EQ(Run({"remove", "my.index", "large"}).status, 0);
  const std::string before = IndexBytes();
  const Outcome dry = Run({"shrink", "-n", "my.index"});
  EXPECT_EQ(IndexBytes(), before);
  const Outcome shrunk = Run({"shrink", "my.index"});
  EXPECT_EQ(dry.out, "would shrink" + shrunk.out.substr(6));
}

}  // namespace
}  // namespace kestan_tests
