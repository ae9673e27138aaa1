// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/cli/commands/upkeep/upkeep_test.h"

namespace kestan_tests {
namespace {

class CopyCommandTest : public UpkeepTest {};

TEST_F(CopyCommandTest, CopyOfAFileHasEveryRecord) {
  EXPECT_EQ(Run({"copy", "one.index", "new.index"}), Success(""));
  EXPECT_EQ(Dump(Path("new.index")), Dump(Path("one.index")));
  EXPECT_EQ(Run({"copy", "one.index", "new.index"}),
            Failure("cannot make 'new.index': there is something already; choose another name"));
}

TEST_F(CopyCommandTest, CopyOfAFolderHasEveryFile) {
  EXPECT_EQ(Run({"copy", "my.index/", "new.index/"}), Success(""));
  Files files = FilesIn("my.index");
  files.erase("writer.lock");
  EXPECT_EQ(FilesIn("new.index"), files);
}

TEST_F(CopyCommandTest, FullDiskIsAnErrorAboutTheNewIndex) {
  const auto full_disk = [limit = FileSizeLimit(1000)] {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // gdbm loses 512 bytes when it cannot make a file
    limit();
  };
  for (const char* index : {"one.index", "my.index"}) {
    const Outcome full = Run({"copy", index, "new.index"}, full_disk);
    EXPECT_EQ(full.status, 2);
    EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
    EXPECT_EQ(full.err.find('\n'), full.err.size() - 1) << full;
    EXPECT_EQ(CountFiles("new.index"), 0);
  }
}

TEST_F(CopyCommandTest, FolderWithoutWritePermissionIsAnError) {
  OpenFolderToAll(0555);
  EXPECT_EQ(Run({"copy", "my.index", "new"}, GiveUpPrivileges),
            Failure("cannot make 'new': Permission denied"));
}

TEST_F(CopyCommandTest, DamagedFolderIsNotCopied) {
  Damage("my.index/1.terms");
  EXPECT_EQ(Run({"copy", "my.index", "new.index"}),
            Failure("index 'my.index': its bytes have changed since it was written (1.terms); see "
                    "kestan check and kestan repair"));
  EXPECT_EQ(CountFiles("new.index"), 0);
}

TEST_F(CopyCommandTest, OtherFilesAreNotCopied) {
  Write("text", "no index");
  EXPECT_EQ(Run({"copy", "text", "new.index"}).status, 2);
  EXPECT_EQ(Run({"copy", "nowhere", "new.index"}),
            Failure("cannot open index 'nowhere': no such file or folder; kestan index makes one"));
  EXPECT_EQ(CountFiles("new.index"), 0);
}

}  // namespace
}  // namespace kestan_tests
