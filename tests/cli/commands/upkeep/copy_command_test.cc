#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class CopyCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat dog\n");
    Add("b", "cat\n");
  }
};

TEST_F(CopyCommandTest, CopyHasEveryRecord) {
  EXPECT_EQ(Run({"copy", "my.index", "new.index"}), Success(""));
  EXPECT_EQ(Dump(Path("new.index")), Dump(Path("my.index")));
  EXPECT_EQ(Run({"copy", "my.index", "new.index"}),
            Failure("cannot make 'new.index': there is something already; choose another name"));
}

TEST_F(CopyCommandTest, FullDiskIsAnErrorAboutTheNewFile) {
  const auto full_disk = [limit = FileSizeLimit(1000)] {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // gdbm loses 512 bytes when it cannot make a file
    limit();
  };
  const Outcome full = Run({"copy", "my.index", "new.index"}, full_disk);
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
  EXPECT_EQ(full.err.find('\n'), full.err.size() - 1) << full;
  EXPECT_FALSE(std::filesystem::exists(Path("new.index")));
}

TEST_F(CopyCommandTest, FolderWithoutWritePermissionIsAnError) {
  OpenFolderToAll(0555);
  EXPECT_EQ(Run({"copy", "my.index", "new"}, GiveUpPrivileges),
            Failure("cannot make 'new': cannot make a folder beside it: permission denied"));
}

}  // namespace
}  // namespace kestan_tests
