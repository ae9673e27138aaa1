#include "cli/files/atomic_replace.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "cli/files/descriptor.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

class CopyFileTest : public kestan_tests::CommandTest {
 protected:
  int Copy(const std::string& from, const std::string& to) {
    const Descriptor source(open(Path(from).c_str(), O_RDONLY | O_CLOEXEC));
    return CopyFile(source.number(), Path(to));
  }
};

TEST_F(CopyFileTest, HasTheSameBytes) {
  std::string bytes;
  while (bytes.size() < 3'000'000) bytes += std::to_string(bytes.size());
  Write("a", bytes);
  ASSERT_EQ(Copy("a", "b"), 0);
  EXPECT_EQ(kestan_tests::BytesOfFile(Path("b")), bytes);
  Write("empty", "");
  ASSERT_EQ(Copy("empty", "c"), 0);
  EXPECT_EQ(kestan_tests::BytesOfFile(Path("c")), "");
}

TEST_F(CopyFileTest, StartsAtTheFirstByteWhereverTheSourceStands) {
  Write("a", "text");
  const Descriptor source(open(Path("a").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(lseek(source.number(), 2, SEEK_SET), 2);
  ASSERT_EQ(CopyFile(source.number(), Path("b")), 0);
  EXPECT_EQ(kestan_tests::BytesOfFile(Path("b")), "text");
  EXPECT_EQ(lseek(source.number(), 0, SEEK_CUR), 2);
}

TEST_F(CopyFileTest, BelongsToThisUserAlone) {
  Write("a", "text");
  ASSERT_EQ(chmod(Path("a").c_str(), 0666), 0);
  ASSERT_EQ(Copy("a", "b"), 0);
  struct stat status {};
  ASSERT_EQ(stat(Path("b").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(CopyFileTest, ReplacesNothingAndFollowsNoLink) {
  Write("a", "text");
  Write("b", "other");
  EXPECT_EQ(Copy("a", "b"), EEXIST);
  EXPECT_EQ(kestan_tests::BytesOfFile(Path("b")), "other");
  ASSERT_EQ(symlink("gone", Path("link").c_str()), 0);
  EXPECT_EQ(Copy("a", "link"), EEXIST);
}

TEST_F(CopyFileTest, FailuresHaveTheSystemsNumber) {
  Write("a", "text");
  EXPECT_EQ(Copy("a", "gone/b"), ENOENT);
  EXPECT_EQ(CopyFile(-1, Path("c")), EBADF);
  const Descriptor folder(open(Path("").c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(CopyFile(folder.number(), Path("d")), EISDIR);
}

using SyncPathTest = CopyFileTest;

TEST_F(SyncPathTest, FilesAndDirectoriesAreSynced) {
  Write("a", "text");
  EXPECT_EQ(SyncPath(Path("a")), 0);
  EXPECT_EQ(SyncPath(Path("")), 0);
  EXPECT_EQ(SyncPath(Path("gone")), ENOENT);
}

TEST(DirectoryOfTest, IsTheWayToTheLastPart) {
  EXPECT_EQ(DirectoryOf("a/b/c"), "a/b");
  EXPECT_EQ(DirectoryOf("/a"), "/");
  EXPECT_EQ(DirectoryOf("a"), ".");
}

}  // namespace
}  // namespace kestan_cli
