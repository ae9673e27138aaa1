// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/staging_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "search/index/manifest/manifest.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

namespace fs = std::filesystem;

using kestan_tests::ReadFile;
using kestan_tests::WriteFile;

class StagingFolderTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return dir_ / name; }

  static fs::perms ModeOf(const std::string& path) { return fs::status(path).permissions(); }

  kestan_tests::TempDir dir_;
};

TEST_F(StagingFolderTest, IsGoneAtTheEnd) {
  {
    StagingFolder staging;
    ASSERT_TRUE(staging.Create(Path("new")).ok());
    EXPECT_EQ(staging.path(), Path("new.new"));
    EXPECT_EQ(ModeOf(staging.path()), fs::perms::owner_all);
    WriteFile(staging.path() + "/1.segment", "");
    WriteFile(staging.path() + "/MANIFEST", "");
    WriteFile(staging.path() + "/MANIFEST.new", "");
  }
  EXPECT_TRUE(fs::is_empty(Path("")));
}

TEST_F(StagingFolderTest, GetsItsNameWithTheUsualRights) {
  StagingFolder staging;
  ASSERT_TRUE(staging.Create(Path("new")).ok());
  WriteFile(staging.path() + "/1.segment", "bytes");
  ASSERT_TRUE(staging.PublishFolder().ok());
  EXPECT_EQ(ReadFile(Path("new/1.segment")), "bytes");
  fs::create_directory(Path("usual"));
  EXPECT_EQ(ModeOf(Path("new")), ModeOf(Path("usual")));
  EXPECT_FALSE(fs::exists(Path("new.new")));
}

TEST_F(StagingFolderTest, GivesOneFileTheName) {
  {
    StagingFolder staging;
    ASSERT_TRUE(staging.Create(Path("new")).ok());
    WriteFile(staging.path() + "/1.segment", "bytes");
    WriteFile(staging.path() + "/2.segment", "others");
    ASSERT_TRUE(staging.PublishFile(staging.path() + "/1.segment").ok());
  }
  EXPECT_EQ(ReadFile(Path("new")), "bytes");
  EXPECT_FALSE(fs::exists(Path("new.new")));
}

TEST_F(StagingFolderTest, WhatAppearsMeanwhileStays) {
  StagingFolder folder;
  ASSERT_TRUE(folder.Create(Path("folder")).ok());
  StagingFolder file;
  ASSERT_TRUE(file.Create(Path("file")).ok());
  WriteFile(file.path() + "/1.segment", "bytes");
  fs::create_directory(Path("folder"));
  WriteFile(Path("file"), "of another");
  EXPECT_EQ(folder.PublishFolder().code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(file.PublishFile(file.path() + "/1.segment").code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(ReadFile(Path("file")), "of another");
}

TEST_F(StagingFolderTest, LinksInTheWayAreNotFollowed) {
  fs::create_directory(Path("other"));
  WriteFile(Path("other/1.segment"), "bytes");
  WriteFile(Path("other/MANIFEST"), "text");
  fs::create_symlink(Path("other"), Path("new.new"));
  StagingFolder staging;
  EXPECT_EQ(staging.Create(Path("new")).code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(ReadFile(Path("other/1.segment")), "bytes");
  EXPECT_EQ(ReadFile(Path("other/MANIFEST")), "text");
  fs::create_symlink("nowhere", Path("link"));
  EXPECT_EQ(staging.Create(Path("link")).code(), StatusCode::kAlreadyExists);
}

TEST_F(StagingFolderTest, AnIndexThatIsCalledLikeItStays) {
  fs::create_directory(Path("new.new"));
  WriteFile(Path("new.new/1.segment"), "bytes");
  WriteFile(Path("new.new/MANIFEST"), "text");
  StagingFolder staging;
  const Status status = staging.Create(Path("new"));
  EXPECT_EQ(status.code(), StatusCode::kAlreadyExists);
  EXPECT_EQ(status.file(), Path("new.new"));
  EXPECT_EQ(ReadFile(Path("new.new/1.segment")), "bytes");
  EXPECT_EQ(ReadFile(Path("new.new/MANIFEST")), "text");
}

TEST_F(StagingFolderTest, WhatAnEarlierProcessLeftIsRemoved) {
  fs::create_directory(Path("empty.new"));
  fs::create_directory(Path("new.new"));
  for (const char* const name : {"1.segment", "MANIFEST", kStagingMarker}) {
    WriteFile(Path("new.new/") + name, "");
  }
  StagingFolder empty;
  EXPECT_TRUE(empty.Create(Path("empty")).ok());
  StagingFolder staging;
  EXPECT_TRUE(staging.Create(Path("new")).ok());
  EXPECT_FALSE(fs::exists(Path("new.new/1.segment")));
}

TEST_F(StagingFolderTest, OneProcessAtATimeMakesAnIndex) {
  StagingFolder first;
  ASSERT_TRUE(first.Create(Path("new")).ok());
  StagingFolder second;
  EXPECT_EQ(second.Create(Path("new")).code(), StatusCode::kBusy);
  EXPECT_TRUE(fs::exists(first.path()));
}

TEST_F(StagingFolderTest, ThePublishedIndexHasNoMarker) {
  StagingFolder staging;
  ASSERT_TRUE(staging.Create(Path("new")).ok());
  ASSERT_TRUE(staging.PublishFolder().ok());
  EXPECT_TRUE(fs::is_empty(Path("new")));
}

TEST_F(StagingFolderTest, TemporaryOnesAreOfThisUserAlone) {
  std::string path;
  {
    StagingFolder staging;
    ASSERT_TRUE(staging.CreateTemporary().ok());
    path = staging.path();
    EXPECT_EQ(ModeOf(path), fs::perms::owner_all);
    WriteFile(path + "/7.terms", "");
    staging.RemoveSegment(7);
    EXPECT_TRUE(fs::is_empty(path));
  }
  EXPECT_FALSE(fs::exists(path));
}

}  // namespace
}  // namespace kestan::search
