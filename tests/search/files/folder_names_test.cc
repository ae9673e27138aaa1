// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/files/folder_names.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

TEST(FolderNamesTest, AFileLiesInTheFolderThatItsPathNames) {
  EXPECT_EQ(FolderOf("a/b/c"), "a/b");
  EXPECT_EQ(FolderOf("/c"), "/");
  EXPECT_EQ(FolderOf("c"), ".");
}

TEST(FolderNamesTest, NamesAreSorted) {
  const kestan_tests::TempDir folder;
  for (const char* const name : {"b", ".hidden", "a"}) kestan_tests::WriteFile(folder / name, "");
  std::filesystem::create_directory(folder / "c");
  const auto names = NamesIn(folder / ".");
  ASSERT_TRUE(names.ok()) << names.status().ToString();
  EXPECT_EQ(*names, (std::vector<std::string>{".hidden", "a", "b", "c"}));
}

TEST(FolderNamesTest, EmptyFolderHasNone) {
  const kestan_tests::TempDir folder;
  const auto names = NamesIn(folder / ".");
  ASSERT_TRUE(names.ok()) << names.status().ToString();
  EXPECT_TRUE(names->empty());
}

TEST(FolderNamesTest, MissingFolderIsNotFound) {
  const kestan_tests::TempDir folder;
  EXPECT_EQ(NamesIn(folder / "none").status().code(), StatusCode::kNotFound);
}

TEST(FolderNamesTest, FileIsAnError) {
  const kestan_tests::TempDir folder;
  kestan_tests::WriteFile(folder / "file", "");
  const auto names = NamesIn(folder / "file");
  EXPECT_EQ(names.status().code(), StatusCode::kSystem);
  EXPECT_EQ(names.status().file(), folder / "file");
}

}  // namespace
}  // namespace kestan::search
