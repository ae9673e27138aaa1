// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/version_control.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

class VersionControlTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::current_path(folder_ / ""); }
  void TearDown() override { std::filesystem::current_path("/"); }

  static void Write(const std::string& name, const std::string& text = "x") {
    std::filesystem::create_directories(std::filesystem::path(name).parent_path());
    std::ofstream(name) << text;
  }

  static std::string Of(const std::string& name) { return VersionControlOf(AT_FDCWD, name); }

 private:
  const kestan_tests::TempDir folder_;
};

TEST_F(VersionControlTest, FoldersAreKnownByWhatTheyHold) {
  Write(".git/HEAD");
  Write(".hg/requires");
  Write(".svn/wc.db");
  Write(".bzr/branch-format");
  Write("CVS/Entries");
  Write("_darcs/format");
  EXPECT_EQ(Of(".git"), "git");
  EXPECT_EQ(Of(".hg"), "Mercurial");
  EXPECT_EQ(Of(".svn"), "Subversion");
  EXPECT_EQ(Of(".bzr"), "Bazaar");
  EXPECT_EQ(Of("CVS"), "CVS");
  EXPECT_EQ(Of("_darcs"), "Darcs");
}

TEST_F(VersionControlTest, FoldersThatAreOnlyCalledSoAreOthers) {
  for (const char* name : {".git", ".hg", ".svn", ".bzr", "CVS", "_darcs"}) {
    Write(std::string(name) + "/notes.txt");
    EXPECT_EQ(Of(name), "") << name;
  }
  Write("git/HEAD");
  EXPECT_EQ(Of("git"), "");
  EXPECT_EQ(Of("missing"), "");
  EXPECT_EQ(Of(".git2"), "");
}

TEST_F(VersionControlTest, FileThatLeadsToGitIsItsOwn) {
  std::ofstream(".git") << "gitdir: ../x\n";
  EXPECT_EQ(Of(".git"), "git");
  std::ofstream(".git") << "gitdir\n";
  EXPECT_EQ(Of(".git"), "");
  std::ofstream(".hg") << "gitdir: ../x\n";
  EXPECT_EQ(Of(".hg"), "");
}

}  // namespace
}  // namespace kestan_cli
