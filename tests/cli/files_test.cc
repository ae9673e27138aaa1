#include "cli/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/message.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

using Names = std::vector<std::string>;

// Works inside the test's folder, so that names are short.
class FilesTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override { std::filesystem::current_path(Path("")); }
  void TearDown() override { std::filesystem::current_path("/"); }

  static std::string Complaint(const Names& paths, std::size_t max_bytes = kMaxTextBytes) {
    try {
      return std::to_string(FindTextFiles(paths, "index", max_bytes).names.size()) + " files";
    } catch (const CommandError& error) {
      return error.what();
    }
  }
};

TEST_F(FilesTest, FoldersAreWalkedInOrderOfBytes) {
  for (const char* name : {"d/b", "d/a/z", "d/a.txt", "d/B", "d/.hidden"}) Write(name, "text");
  EXPECT_EQ(FindTextFiles({"d"}, "index").names,
            (Names{"d/.hidden", "d/B", "d/a.txt", "d/a/z", "d/b"}));
}

TEST_F(FilesTest, NamesAreLexicallyNormal) {
  Write("d/a", "text");
  EXPECT_EQ(FindTextFiles({"./d/../d//"}, "index").names, Names{"d/a"});
  EXPECT_EQ(FindTextFiles({"."}, "index").names, Names{"d/a"});
}

TEST_F(FilesTest, OverlappingPathsNameEachFileOnce) {
  Write("d/a", "text");
  EXPECT_EQ(FindTextFiles({"d/a", "d", ".", "./d/a"}, "index").names, Names{"d/a"});
}

TEST_F(FilesTest, BinaryFilesAreCounted) {
  Write("d/first", std::string("\0text", 5));
  Write("d/last", std::string(100000, 'x') + '\0');
  Write("d/text", "text");
  const TextFiles files = FindTextFiles({"d"}, "index");
  EXPECT_EQ(files.names, Names{"d/text"});
  EXPECT_EQ(files.binary_files, 2u);
}

TEST_F(FilesTest, PipesCountAsBinaryAndAreNotOpened) {
  Write("d/text", "text");
  ASSERT_EQ(mkfifo("d/pipe", 0644), 0);
  EXPECT_EQ(FindTextFiles({"d"}, "index").binary_files, 1u);
}

TEST_F(FilesTest, LinksInFoldersAreCountedAndNotFollowed) {
  Write("d/a", "text");
  Write("elsewhere/b", "text");
  std::filesystem::create_symlink("a", "d/file");
  std::filesystem::create_symlink("../elsewhere", "d/folder");
  std::filesystem::create_symlink("nowhere", "d/broken");
  const TextFiles files = FindTextFiles({"d"}, "index");
  EXPECT_EQ(files.names, Names{"d/a"});
  EXPECT_EQ(files.links, 3u);
}

TEST_F(FilesTest, LinksGivenByHandAreFollowed) {
  Write("d/a", "text");
  std::filesystem::create_symlink("d", "folder");
  std::filesystem::create_symlink("d/a", "file");
  const TextFiles files = FindTextFiles({"folder", "file"}, "index");
  EXPECT_EQ(files.names, (Names{"file", "folder/a"}));
  EXPECT_EQ(files.links, 0u);
}

TEST_F(FilesTest, TheIndexIsLeftOutUnderAnyName) {
  Write("d/a", "text");
  Write("d/index", "text");
  std::filesystem::create_hard_link("d/index", "d/other");
  EXPECT_EQ(FindTextFiles({"d"}, "./d/../d/index").names, Names{"d/a"});
}

TEST_F(FilesTest, EmptyFolderHasNoFiles) {
  std::filesystem::create_directory("d");
  EXPECT_EQ(FindTextFiles({"d"}, "index").names, Names{});
}

TEST_F(FilesTest, EmptyFileIsText) {
  Write("a", "");
  EXPECT_EQ(FindTextFiles({"a"}, "index").names, Names{"a"});
}

TEST_F(FilesTest, MissingPathIsNamed) {
  Write("a", "text");
  EXPECT_EQ(Complaint({"a", "b"}), "cannot read 'b': no such file or folder");
  EXPECT_EQ(Complaint({"a/b"}), "cannot read 'a/b': no such file or folder");
  EXPECT_EQ(Complaint({""}), "cannot read '': no such file or folder");
}

TEST_F(FilesTest, BrokenLinkGivenByHandIsMissing) {
  std::filesystem::create_symlink("nowhere", "a");
  EXPECT_EQ(Complaint({"a"}), "cannot read 'a': no such file or folder");
}

TEST_F(FilesTest, DevicesGivenByHandAreRefused) {
  EXPECT_EQ(Complaint({"/dev/null"}), "cannot read '/dev/null': neither a file nor a folder");
}

TEST_F(FilesTest, LineFeedInTheNameOfAnyFolderIsRefused) {
  Write("d\nd/a", "text");
  EXPECT_EQ(
      Complaint({"."}),
      "cannot index 'd\\nd/a': its name holds a line feed, and documents are listed one a line");
}

TEST_F(FilesTest, LineFeedInTheNameOfABinaryFileDoesNotMatter) {
  Write("a\nb", std::string(1, '\0'));
  EXPECT_EQ(FindTextFiles({"."}, "index").binary_files, 1u);
}

TEST_F(FilesTest, TextMayBeAsLongAsTheEngineTakes) {
  Write("a", "12345");
  EXPECT_EQ(Complaint({"a"}, 5), "1 files");
  EXPECT_EQ(Complaint({"a"}, 4), "cannot read 'a': too large");
}

TEST_F(FilesTest, LargeBinaryFileIsNoError) {
  Write("a", std::string("1234\0", 5));
  EXPECT_EQ(FindTextFiles({"a"}, "index", 4).binary_files, 1u);
}

TEST_F(FilesTest, ReadFileReturnsAllBytes) {
  const std::string text = std::string(200000, 'x') + "\r\n\xff";
  Write("a", text);
  EXPECT_EQ(ReadFile("a"), text);
}

}  // namespace
}  // namespace kestan_cli
