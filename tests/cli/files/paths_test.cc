// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli/console/message.h"
#include "cli/files/open_file.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

using std::string_view_literals::operator""sv;
using Names = std::vector<std::string>;

TEST(PathListTest, NulEndsAPath) { EXPECT_EQ(PathsIn("a\0b\nc\0"sv), (Names{"a", "b\nc"})); }

TEST(PathListTest, LastNulMayBeMissing) { EXPECT_EQ(PathsIn("a\0b"sv), (Names{"a", "b"})); }

TEST(PathListTest, EmptyPathsAreLeftOut) { EXPECT_EQ(PathsIn("\0\0a\0\0"sv), Names{"a"}); }

TEST(PathListTest, EmptyListHasNone) { EXPECT_EQ(PathsIn(""), Names{}); }

TEST(PathListTest, StreamThatCannotBeReadIsReported) {
  const OpenFile folder(std::fopen("/", "rb"));
  ASSERT_NE(folder, nullptr);
  try {
    ReadPathList(folder.get());
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_STREQ(error.what(), "cannot read the standard input: is a folder");
  }
}

TEST(PathListTest, StreamThatHoldsTooMuchIsReported) {
  const OpenFile zeros(std::fopen("/dev/zero", "rb"));
  ASSERT_NE(zeros, nullptr);
  try {
    ReadPathList(zeros.get(), 100000);
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_STREQ(error.what(), "the standard input holds more than 100000 bytes");
  }
}

TEST(FolderOfTest, LeavesOutTheLastPart) {
  EXPECT_EQ(FolderOf("/a/b"), "/a");
  EXPECT_EQ(FolderOf("/a"), "/");
  EXPECT_EQ(FolderOf("/"), "");
  EXPECT_EQ(FolderOf("a"), "");
  EXPECT_EQ(FolderOf(""), "");
}

TEST(InnermostOfTest, IsTheLongestPathAtOrAboveAName) {
  const std::set<std::string> paths{"/a", "/a/b/c", "/x"};
  EXPECT_EQ(InnermostOf(paths, "/a/b/d"), "/a");
  EXPECT_EQ(InnermostOf(paths, "/a/b/c/d/e"), "/a/b/c");
  EXPECT_EQ(InnermostOf(paths, "/a/b/c"), "/a/b/c");
  EXPECT_EQ(InnermostOf(paths, "/aa/b"), "");
  EXPECT_EQ(InnermostOf(paths, "/"), "");
}

TEST(InnermostOfTest, TheRootHoldsAllAbsoluteNamesAndNoOthers) {
  const std::set<std::string> paths{"/"};
  EXPECT_EQ(InnermostOf(paths, "/a/b"), "/");
  EXPECT_EQ(InnermostOf(paths, "/"), "/");
  EXPECT_EQ(InnermostOf(paths, "a/b"), "");
  EXPECT_EQ(InnermostOf(paths, ""), "");
  EXPECT_EQ(InnermostOf(paths, "//a//"), "/");
}

TEST(IsBelowTest, NamesAreBelowTheirFolders) {
  EXPECT_TRUE(IsBelow("/d/e/a", "/d"));
  EXPECT_TRUE(IsBelow("/d", "/d"));
  EXPECT_TRUE(IsBelow("/d", "/"));
  EXPECT_FALSE(IsBelow("/dd", "/d"));
  EXPECT_FALSE(IsBelow("/d", "/d/e"));
  EXPECT_FALSE(IsBelow("a", "/"));
}

// Works inside the test's directory, so that names are short.
class HasVanishedTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override { std::filesystem::current_path(Path("")); }
  void TearDown() override { std::filesystem::current_path("/"); }
};

TEST_F(HasVanishedTest, OnlyWhatIsKnownToBeGoneHasVanished) {
  Write("a", "text");
  std::filesystem::create_symlink("nowhere", "link");
  EXPECT_FALSE(HasVanished("a"));
  EXPECT_FALSE(HasVanished("link"));
  EXPECT_TRUE(HasVanished("b"));
  EXPECT_TRUE(HasVanished("a/b"));
  EXPECT_FALSE(HasVanished(std::string(300, 'x')));
}

TEST(LastPartTest, IsWhatFollowsTheLastSlash) {
  EXPECT_EQ(LastPart("a/b/c"), "c");
  EXPECT_EQ(LastPart("c"), "c");
  EXPECT_EQ(LastPart("a/"), "");
  EXPECT_EQ(LastPart(""), "");
}

}  // namespace
}  // namespace kestan_cli
