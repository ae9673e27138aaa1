// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/new_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

using kestan_tests::TempDir;
using kestan_tests::WriteFile;

class NewFileTest : public testing::Test {
 protected:
  void MakeFolder(mode_t mode) {
    ASSERT_EQ(mkdir(folder_.c_str(), 0700), 0);
    ASSERT_EQ(chmod(folder_.c_str(), mode), 0);
  }

  // Makes a file and returns what the system says of it.
  struct stat Made() const {
    struct stat information {};
    const Descriptor file = CreateFile(path_);
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(fstat(file.number(), &information), 0);
    return information;
  }

  TempDir dir_;
  std::string folder_ = dir_ / "folder";
  std::string path_ = folder_ + "/file";
};

TEST_F(NewFileTest, WhoMayEnterTheFolderMayReadTheFile) {
  MakeFolder(0755);
  EXPECT_EQ(Made().st_mode & ALLPERMS, 0644u);
}

TEST_F(NewFileTest, WhoMayWriteInTheFolderMayWriteTheFileWhateverTheMaskSays) {
  MakeFolder(0770);
  const mode_t mask = umask(077);
  EXPECT_EQ(Made().st_mode & ALLPERMS, 0660u);
  umask(mask);
}

TEST_F(NewFileTest, NobodyElseReadsTheFileOfAFolderThatIsClosedToThem) {
  MakeFolder(0700);
  EXPECT_EQ(Made().st_mode & ALLPERMS, 0600u);
}

TEST_F(NewFileTest, WhatIsThereIsNotOpened) {
  MakeFolder(0700);
  WriteFile(path_, "text");
  const Descriptor file = CreateFile(path_);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_FALSE(file.is_open());
}

TEST_F(NewFileTest, NoFileIsMadeWhereALinkLeads) {
  MakeFolder(0700);
  ASSERT_EQ(symlink((dir_ / "elsewhere").c_str(), path_.c_str()), 0);
  EXPECT_FALSE(CreateFile(path_).is_open());
  EXPECT_NE(access((dir_ / "elsewhere").c_str(), F_OK), 0);
}

TEST_F(NewFileTest, ASuperuserMakesFilesForTheOwnerOfTheFolder) {
  if (geteuid() != 0) GTEST_SKIP() << "only a superuser gives files away";
  MakeFolder(0750);
  ASSERT_EQ(chown(folder_.c_str(), 1234, 2345), 0);
  const struct stat made = Made();
  EXPECT_EQ(made.st_uid, 1234u);
  EXPECT_EQ(made.st_gid, 2345u);
  EXPECT_EQ(made.st_mode & ALLPERMS, 0640u);
}

// In a process of its own: it gives up privileges.
TEST_F(NewFileTest, WhereTheGroupCannotBeSetTheFileIsNotForAnotherGroup) {
  if (geteuid() != 0) GTEST_SKIP() << "only a superuser makes folders of another group";
  ASSERT_EQ(chmod((dir_ / ".").c_str(), 0711), 0);
  MakeFolder(0770);
  ASSERT_EQ(chown(folder_.c_str(), 1234, 2345), 0);
  ASSERT_EQ(setgid(65534), 0);
  ASSERT_EQ(setuid(1234), 0);
  EXPECT_EQ(Made().st_mode & ALLPERMS, 0600u);
}

TEST_F(NewFileTest, WithoutTheGroupItsMembersGetNoMoreAmongAllOthers) {
  if (geteuid() != 0) GTEST_SKIP() << "only a superuser makes folders of another group";
  ASSERT_EQ(chmod((dir_ / ".").c_str(), 0711), 0);
  MakeFolder(0757);
  ASSERT_EQ(chown(folder_.c_str(), 1234, 2345), 0);
  ASSERT_EQ(setgid(65534), 0);
  ASSERT_EQ(setuid(1235), 0);
  EXPECT_EQ(Made().st_mode & ALLPERMS, 0644u);
}

}  // namespace
}  // namespace kestan::search
