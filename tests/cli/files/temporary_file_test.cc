// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/temporary_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "cli/files/skip.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

class TemporaryFileTest : public testing::Test {
 protected:
  TemporaryFileTest() { setenv("TMPDIR", (folder_ / "").c_str(), 1); }

  const kestan_tests::TempDir folder_;
};

TEST_F(TemporaryFileTest, FileHoldsTheBytesAndNobodyElseMayEnter) {
  const TemporaryFile file(".ps", "bytes");
  EXPECT_EQ(kestan_tests::ReadFile(file.path()), "bytes");
  EXPECT_EQ(fs::path(file.path()).extension(), ".ps");
  struct stat status {};
  ASSERT_EQ(stat(fs::path(file.path()).parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0700u);
}

TEST_F(TemporaryFileTest, NothingStays) {
  { const TemporaryFile file(".ps", "bytes"); }
  EXPECT_TRUE(fs::is_empty(folder_ / ""));
}

TEST_F(TemporaryFileTest, TwoFilesAreTwo) {
  const TemporaryFile one("", "1");
  const TemporaryFile two("", "2");
  EXPECT_EQ(kestan_tests::ReadFile(one.path()), "1");
}

TEST_F(TemporaryFileTest, FolderThatIsNotThereIsReported) {
  setenv("TMPDIR", (folder_ / "gone").c_str(), 1);
  EXPECT_THROW(TemporaryFile("", ""), SkipFile);
}

}  // namespace
}  // namespace kestan_cli
