#include "cli/files/paths.h"

#include <gtest/gtest.h>

#include <filesystem>
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

// Works inside the test's directory, so that names are short.
class NameOfTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override { std::filesystem::current_path(Path("")); }
  void TearDown() override { std::filesystem::current_path("/"); }
};

TEST_F(NameOfTest, NamesHaveNoDotsAndNoSlashAtTheEnd) {
  EXPECT_EQ(NameOf("./a//b/./c/"), "a/b/c");
  EXPECT_EQ(NameOf("."), ".");
  EXPECT_EQ(NameOf("./"), ".");
  EXPECT_EQ(NameOf("/"), "/");
  EXPECT_EQ(NameOf("//a/."), "/a");
  EXPECT_EQ(NameOf(""), "");
  EXPECT_EQ(NameOf("a..b/..c"), "a..b/..c");
}

TEST_F(NameOfTest, WayUpFromAFolderIsTakenOut) {
  std::filesystem::create_directories("a/b");
  EXPECT_EQ(NameOf("a/b/../c"), "a/c");
  EXPECT_EQ(NameOf("a/b/../../c"), "c");
  EXPECT_EQ(NameOf("a/.."), ".");
  EXPECT_EQ(NameOf("./a/b/.././../a"), "a");
  EXPECT_EQ(NameOf(Path("a/../c")), Path("c"));
  EXPECT_EQ(NameOf("/../a"), "/a");
  EXPECT_EQ(NameOf("../a/.."), "../a/..");  // of which nothing is known
}

TEST_F(NameOfTest, WayUpFromAnythingElseStays) {
  std::filesystem::create_directories("a/b");
  std::filesystem::create_directories("x/y");
  std::filesystem::create_symlink("../x/y", "a/link");
  Write("file", "text");
  EXPECT_EQ(NameOf("a/link/../f"), "a/link/../f");
  EXPECT_EQ(NameOf("a//link/./..//y/../f/"), "a/link/../f");
  EXPECT_EQ(NameOf("a/link/../../f"), "a/link/../../f");
  EXPECT_EQ(NameOf("gone/../f"), "gone/../f");
  EXPECT_EQ(NameOf("file/../f"), "file/../f");
  EXPECT_EQ(NameOf("../../f"), "../../f");
}

TEST(IsBelowTest, NamesAreBelowTheirFolders) {
  EXPECT_TRUE(IsBelow("d/e/a", {"d"}));
  EXPECT_TRUE(IsBelow("d/e/a", {"x", "d/e"}));
  EXPECT_TRUE(IsBelow("d", {"d"}));
  EXPECT_FALSE(IsBelow("dd", {"d"}));
  EXPECT_FALSE(IsBelow("dd/a", {"d"}));
  EXPECT_FALSE(IsBelow("a", {}));
}

TEST(IsBelowTest, TheFolderOfTheProcessHoldsNamesThatDoNotLeaveIt) {
  EXPECT_TRUE(IsBelow("a", {"."}));
  EXPECT_TRUE(IsBelow("a/b", {"."}));
  EXPECT_TRUE(IsBelow("..a", {"."}));
  EXPECT_FALSE(IsBelow("../a", {"."}));
  EXPECT_FALSE(IsBelow("/a", {"."}));
  EXPECT_TRUE(IsBelow("../a", {".."}));
  EXPECT_FALSE(IsBelow("a", {".."}));
}

TEST(IsBelowTest, WhatFollowsAWayUpIsNotBelowWhatPrecedesIt) {
  EXPECT_FALSE(IsBelow("a/link/../f", {"a"}));
  EXPECT_FALSE(IsBelow("a/link/../f", {"a/link", "."}));
  EXPECT_FALSE(IsBelow("/a/link/../f", {"/"}));
  EXPECT_TRUE(IsBelow("a/link/../f", {"a/link/.."}));
  EXPECT_TRUE(IsBelow("a/link/../f", {"a/link/../f"}));
}

TEST(IsBelowTest, TheRootHoldsAllAbsoluteNames) {
  EXPECT_TRUE(IsBelow("/a/b", {"/"}));
  EXPECT_FALSE(IsBelow("a/b", {"/"}));
}

using HasVanishedTest = NameOfTest;

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
