// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/index_kind.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "cli/console/message.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

class IndexKindTest : public testing::Test {
 protected:
  // Returns why a command may not change what is at `path`; "" if it may.
  static std::string Refusal(const std::string& path) {
    try {
      CheckIsFolder(path);
    } catch (const CommandError& error) {
      EXPECT_EQ(error.status(), kFailed);
      return error.what();
    }
    return "";
  }

  // Returns why it is not known what is at `path`; "" if it is.
  static std::string Trouble(const std::string& path) {
    try {
      KindOfIndex(path);
    } catch (const CommandError& error) {
      return error.what();
    }
    return "";
  }

  const kestan_tests::TempDir folder_;
};

TEST_F(IndexKindTest, IsToldByTheKindOfFileAlone) {
  fs::create_directory(folder_ / "folder");
  kestan_tests::WriteFile(folder_ / "file", "no index at all");
  EXPECT_EQ(KindOfIndex(folder_ / "folder"), IndexKind::kFolder);
  EXPECT_EQ(KindOfIndex(folder_ / "folder/"), IndexKind::kFolder);
  EXPECT_EQ(KindOfIndex(folder_ / "file"), IndexKind::kFile);
  EXPECT_EQ(KindOfIndex(folder_ / "none"), IndexKind::kNone);
  EXPECT_EQ(KindOfIndex(folder_ / "none/below"), IndexKind::kNone);
  EXPECT_EQ(KindOfIndex(folder_ / "file/below"), IndexKind::kNone);
  EXPECT_EQ(KindOfIndex(""), IndexKind::kNone);
}

TEST_F(IndexKindTest, LinksAreFollowed) {
  fs::create_directory(folder_ / "folder");
  fs::create_symlink("folder", folder_ / "link");
  fs::create_symlink("none", folder_ / "dangling");
  EXPECT_EQ(KindOfIndex(folder_ / "link"), IndexKind::kFolder);
  EXPECT_EQ(KindOfIndex(folder_ / "dangling"), IndexKind::kNone);
}

TEST_F(IndexKindTest, OtherKindsOfFilesAreNoIndexes) {
  const std::string pipe = folder_ / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Trouble(pipe), "cannot open index '" + pipe + "': not an index");
  EXPECT_EQ(Trouble("/dev/null"), "cannot open index '/dev/null': not an index");
}

TEST_F(IndexKindTest, WhatCannotBeExaminedHasTheReasonOfTheSystem) {
  fs::create_symlink("loop", folder_ / "loop");
  EXPECT_EQ(Trouble(folder_ / "loop").find("cannot open index '"), 0u);
  EXPECT_NE(Trouble(folder_ / "loop").find("too many levels of symbolic links"), std::string::npos);
  const std::string name(5000, 'x');
  EXPECT_NE(Trouble(folder_ / name).find("file name too long"), std::string::npos);
}

TEST_F(IndexKindTest, FoldersMayBeChanged) {
  fs::create_directory(folder_ / "folder");
  EXPECT_EQ(Refusal(folder_ / "folder"), "");
}

TEST_F(IndexKindTest, WhereNothingIsTheMessageSaysWhatMakesAnIndex) {
  const std::string none = folder_ / "none";
  EXPECT_EQ(Refusal(none),
            "cannot open index '" + none + "': no such file or folder; kestan index makes one");
}

TEST_F(IndexKindTest, OfOneFileTheMessageSaysWhatMakesAFolderOfIt) {
  kestan_tests::WriteFile(folder_ / "file", "");
  const std::string file = folder_ / "file";
  EXPECT_EQ(Refusal(file), "cannot change index '" + file +
                               "': an index of one file is only read; kestan convert FILE FOLDER "
                               "makes a folder of it");
}

}  // namespace
}  // namespace kestan_cli
