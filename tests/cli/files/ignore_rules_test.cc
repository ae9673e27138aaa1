// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore_rules.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class IgnoreRulesTest : public kestan_tests::CommandTest {
 protected:
  // Returns the pattern that leaves out `name`, which is below `base`; "" if none does.
  std::string PatternAgainst(const std::string& name, const std::string& base = "d") const {
    const std::string reason = ReasonToLeaveOut(Path(base), Path(name));
    const std::size_t colon = reason.find("': ");
    return colon == std::string::npos ? reason : reason.substr(colon + 3);
  }
};

TEST_F(IgnoreRulesTest, ReasonNamesTheLine) {
  Write("d/.ignore", "\n*.o\n");
  Write("d/e/a.o", "");
  EXPECT_EQ(ReasonToLeaveOut(Path("d"), Path("d/e/a.o")),
            "line 2 of '" + Path("d/.ignore") + "': *.o");
}

TEST_F(IgnoreRulesTest, GitIgnoreCountsInAWorkTreeOnly) {
  Write("d/.gitignore", "a\n");
  Write("d/a", "");
  EXPECT_EQ(PatternAgainst("d/a"), "");
  Write("d/.git", "");
  EXPECT_EQ(PatternAgainst("d/a"), "a");
}

TEST_F(IgnoreRulesTest, RulesComeDownFromTheTopOfTheWorkTree) {
  Write(".ignore", "a\n");
  Write(".gitignore", "a\n");
  Write("d/.git/HEAD", "");
  Write("d/.gitignore", "/e/f/b\n");
  Write("d/.ignore", "c\n");
  Write("d/e/f/a", "");
  Write("d/e/f/b", "");
  Write("d/e/f/c", "");
  EXPECT_EQ(PatternAgainst("d/e/f/b", "d/e"), "/e/f/b");
  EXPECT_EQ(PatternAgainst("d/e/f/b", "d/e/f"), "/e/f/b");
  EXPECT_EQ(PatternAgainst("d/e/f/c", "d/e"), "c");
  EXPECT_EQ(PatternAgainst("d/e/f/a", "d/e"), "");
}

TEST_F(IgnoreRulesTest, DeeperFilesGoFirst) {
  Write("d/.git/HEAD", "");
  Write("d/.gitignore", "*.o\n!b.o\n");
  Write("d/e/.gitignore", "!a.o\nb.o\n");
  for (const char* name : {"d/a.o", "d/b.o", "d/e/a.o", "d/e/b.o", "d/e/c.o"}) Write(name, "");
  EXPECT_EQ(PatternAgainst("d/a.o"), "*.o");
  EXPECT_EQ(PatternAgainst("d/b.o"), "");
  EXPECT_EQ(PatternAgainst("d/e/a.o"), "");
  EXPECT_EQ(PatternAgainst("d/e/b.o"), "b.o");
  EXPECT_EQ(PatternAgainst("d/e/c.o"), "*.o");
}

TEST_F(IgnoreRulesTest, IgnoreGoesBeforeGitIgnoreWhereverItIs) {
  Write("d/.git/HEAD", "");
  Write("d/.ignore", "!a\nb\n");
  Write("d/e/.gitignore", "a\n!b\nc\n");
  for (const char* name : {"d/e/a", "d/e/b", "d/e/c"}) Write(name, "");
  EXPECT_EQ(PatternAgainst("d/e/a"), "");
  EXPECT_EQ(PatternAgainst("d/e/b"), "b");
  EXPECT_EQ(PatternAgainst("d/e/c"), "c");
}

TEST_F(IgnoreRulesTest, WorkTreeInAnotherHasItsOwnRules) {
  Write("d/.git/HEAD", "");
  Write("d/.gitignore", "a\nlost\n");
  Write("d/.git/info/exclude", "b\n");
  Write("d/.ignore", "c\n");
  Write("d/in/.git", "");
  for (const char* name : {"d/in/a", "d/in/b", "d/in/c", "d/lost/in/a"}) Write(name, "");
  EXPECT_EQ(PatternAgainst("d/in/a"), "");
  EXPECT_EQ(PatternAgainst("d/in/b"), "");
  EXPECT_EQ(PatternAgainst("d/in/c"), "c");
  Write("d/lost/in/.git", "");
  EXPECT_EQ(PatternAgainst("d/lost/in/a"), "lost");
}

TEST_F(IgnoreRulesTest, ExcludeFileComesLast) {
  Write("d/.git/info/exclude", "*.o\n/e\n");
  Write("d/.gitignore", "!a.o\n");
  for (const char* name : {"d/a.o", "d/b.o", "d/f/e"}) Write(name, "");
  EXPECT_EQ(PatternAgainst("d/a.o"), "");
  EXPECT_EQ(PatternAgainst("d/b.o"), "*.o");
  EXPECT_EQ(PatternAgainst("d/f/e"), "");
}

TEST_F(IgnoreRulesTest, ExcludeFileOfALinkedWorkTreeIsFound) {
  Write("main/.git/info/exclude", "a\n");
  Write("main/.git/worktrees/d/commondir", "../..\n");
  Write("d/.git", "gitdir: " + Path("main/.git/worktrees/d") + "\n");
  Write("d/a", "");
  EXPECT_EQ(PatternAgainst("d/a"), "a");
  Write("d/.git", "gitdir: ../modules/d\n");
  EXPECT_EQ(PatternAgainst("d/a"), "");
  Write("modules/d/info/exclude", "*\n");
  EXPECT_EQ(PatternAgainst("d/a"), "*");
}

TEST_F(IgnoreRulesTest, NothingInAFolderThatIsLeftOutIsTakenAgain) {
  Write("d/.ignore", "e/\n!e/a\n");
  Write("d/e/a", "");
  EXPECT_EQ(PatternAgainst("d/e/a"), "e/");
}

TEST_F(IgnoreRulesTest, LinksPipesAndLargeFilesSayNothing) {
  Write("d/a", "");
  Write("patterns", "a\n");
  std::filesystem::create_symlink(Path("patterns"), Path("d/.ignore"));
  EXPECT_EQ(PatternAgainst("d/a"), "");
  std::filesystem::remove(Path("d/.ignore"));
  ASSERT_EQ(mkfifo(Path("d/.ignore").c_str(), 0644), 0);
  EXPECT_EQ(PatternAgainst("d/a"), "");
  std::filesystem::remove(Path("d/.ignore"));
  std::filesystem::create_directory(Path("d/.ignore"));
  EXPECT_EQ(PatternAgainst("d/a"), "");
  std::filesystem::remove(Path("d/.ignore"));
  Write("d/.ignore", "a\n" + std::string(kMaxIgnoreBytes - 2, '#'));
  EXPECT_EQ(PatternAgainst("d/a"), "a");
  Write("d/.ignore", "a\n" + std::string(kMaxIgnoreBytes - 1, '#'));
  EXPECT_EQ(PatternAgainst("d/a"), "");
}

TEST_F(IgnoreRulesTest, FoldersOfVersionControlAreLeftOut) {
  Write("d/.git/HEAD", "");
  Write("d/e/CVS/Root", "");
  EXPECT_EQ(PatternAgainst("d/.git"), "kept by git");
  EXPECT_EQ(PatternAgainst("d/.git/HEAD"), "kept by git");
  EXPECT_EQ(PatternAgainst("d/e/CVS/Root"), "kept by CVS");
  EXPECT_EQ(PatternAgainst("d/e/CVS/Root", "d/e/CVS"), "");
}

TEST_F(IgnoreRulesTest, WhatIsNotThereIsNotLeftOut) {
  EXPECT_EQ(ReasonToLeaveOut("/no/such", "/no/such/path"), "");
  EXPECT_EQ(PatternAgainst("d/none"), "");
}

}  // namespace
}  // namespace kestan_cli
