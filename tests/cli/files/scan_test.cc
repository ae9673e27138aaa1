// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/scan.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli/console/message.h"
#include "cli/index/document_names.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {
namespace {

using Names = std::vector<std::string>;

// Works inside the test's folder, so that names are short.
class ScanTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override { std::filesystem::current_path(Path("")); }
  void TearDown() override { std::filesystem::current_path("/"); }

  // Scans these paths, which may be given in any way.
  static Scan ScanOf(const Names& paths, const NameFilter& filter = {},
                     const std::string& index = "index",
                     const std::set<std::string>& borders = {}) {
    std::vector<ScanRoot> roots;
    for (const std::string& path : paths) {
      const std::string canonical = path.empty() ? "" : CanonicalPath(path);
      roots.push_back({canonical, path, filter, MissingPath::kThrow});
    }
    return ScanRoots(roots, borders, index);
  }

  // Returns the names as they are below the test's folder.
  static Names FilesOf(const Scan& scan) {
    Names names;
    for (const FoundFile& file : scan.files) names.push_back(ShownNames()(file.name));
    return names;
  }

  static Names Files(const Names& paths) { return FilesOf(ScanOf(paths)); }

  static Names SkipsOf(const Scan& scan) {
    Names skips;
    for (const Skip& skip : scan.skips)
      skips.push_back(ShownNames()(skip.name) + ": " + skip.reason);
    return skips;
  }

  static std::string Complaint(const Names& paths) {
    try {
      return std::to_string(ScanOf(paths).files.size()) + " files";
    } catch (const CommandError& error) {
      return error.what();
    }
  }
};

TEST_F(ScanTest, FoldersAreWalkedInOrderOfBytes) {
  for (const char* name : {"d/b", "d/a/z", "d/a.txt", "d/B", "d/.hidden"}) Write(name, "text");
  EXPECT_EQ(Files({"d"}), (Names{"d/.hidden", "d/B", "d/a.txt", "d/a/z", "d/b"}));
}

TEST_F(ScanTest, NamesAreShort) {
  Write("d/a", "text");
  EXPECT_EQ(Files({"./d/../d//"}), Names{"d/a"});
  EXPECT_EQ(Files({"."}), Names{"d/a"});
}

TEST_F(ScanTest, OverlappingPathsNameEachFileOnce) {
  Write("d/a", "text");
  EXPECT_EQ(Files({"d/a", "d", ".", "./d/a"}), Names{"d/a"});
}

TEST_F(ScanTest, FilesComeWithSizeAndTime) {
  Write("a", "text");
  const timespec times[] = {{0, 0}, {1000000000, 123456789}};
  ASSERT_EQ(utimensat(AT_FDCWD, "a", times, 0), 0);
  EXPECT_EQ(ScanOf({"a"}).files.at(0).state, (FileState{4, 1000000000, 123456789}));
}

TEST_F(ScanTest, FilesAreNotRead) {
  Write("d/a", std::string(1, '\0'));
  Write("d/b", "");
  EXPECT_EQ(Files({"d"}), (Names{"d/a", "d/b"}));
}

TEST_F(ScanTest, PipesAreSkippedAndNotOpened) {
  Write("d/text", "text");
  ASSERT_EQ(mkfifo("d/pipe", 0644), 0);
  const Scan scan = ScanOf({"d"});
  EXPECT_EQ(FilesOf(scan), Names{"d/text"});
  EXPECT_EQ(SkipsOf(scan), Names{"d/pipe: pipe, socket or device"});
}

TEST_F(ScanTest, LinksInFoldersAreSkippedAndNotFollowed) {
  Write("d/a", "text");
  Write("elsewhere/b", "text");
  std::filesystem::create_symlink("a", "d/file");
  std::filesystem::create_symlink("../elsewhere", "d/folder");
  std::filesystem::create_symlink("nowhere", "d/broken");
  const Scan scan = ScanOf({"d"});
  EXPECT_EQ(FilesOf(scan), Names{"d/a"});
  EXPECT_EQ(SkipsOf(scan),
            (Names{"d/broken: symbolic link", "d/file: symbolic link", "d/folder: symbolic link"}));
}

TEST_F(ScanTest, LinksGivenByHandAreFollowed) {
  Write("d/a", "text");
  std::filesystem::create_symlink("d", "folder");
  std::filesystem::create_symlink("d/a", "file");
  const Scan scan = ScanOf({"folder", "file"});
  EXPECT_EQ(FilesOf(scan), Names{"d/a"});  // under its own name
  EXPECT_EQ(SkipsOf(scan), Names{});
}

TEST_F(ScanTest, LinkIsSkippedThoughAPathLeadsThroughIt) {
  Write("d/a", "text");
  std::filesystem::create_symlink("a", "d/link");
  const Scan scan = ScanOf({"d", "d/link"});
  EXPECT_EQ(FilesOf(scan), Names{"d/a"});
  EXPECT_EQ(SkipsOf(scan), Names{"d/link: symbolic link"});
}

TEST_F(ScanTest, TheIndexIsLeftOutUnderAnyName) {
  Write("d/a", "text");
  Write("d/index/MANIFEST", "text");
  std::filesystem::create_directory_symlink("d/index", "link");
  for (const char* index : {"./d/../d/index", "link"}) {
    EXPECT_EQ(FilesOf(ScanOf({"d"}, {}, index)), Names{"d/a"});
    EXPECT_EQ(FilesOf(ScanOf({"d/index"}, {}, index)), Names{});
  }
}

TEST_F(ScanTest, FolderOfAnotherIndexIsOneSkip) {
  Write("d/a", "text");
  Write("d/e/other/MANIFEST", "kestan-index 1\n");
  Write("d/e/other/1.segment", "text");
  Write("d/e/other/below/b", "text");
  const Scan scan = ScanOf({"d"});
  EXPECT_EQ(FilesOf(scan), Names{"d/a"});
  EXPECT_EQ(SkipsOf(scan), Names{"d/e/other: another index"});
  EXPECT_EQ(scan.skips.at(0).kind, SkipKind::kIndex);
}

TEST_F(ScanTest, FolderOfAnotherIndexIsWalkedWhereItIsNamed) {
  Write("d/other/MANIFEST", "kestan-index 1\n");
  EXPECT_EQ(Files({"d/other"}), Names{"d/other/MANIFEST"});
  const ScanRoot below{Path("d/other"), "d/other", {}, MissingPath::kThrow, Path("d")};
  EXPECT_EQ(SkipsOf(ScanRoots({below}, {}, "index")), Names{"d/other: another index"});
}

TEST_F(ScanTest, OtherManifestsAreFiles) {
  const Names names{"d/a/MANIFEST", "d/b/MANIFEST", "d/c/MANIFEST/file", "d/e/manifest"};
  Write(names[0], "kestan-index");
  Write(names[1], "");
  Write(names[2], "text");
  Write(names[3], "kestan-index 1\n");
  Write("elsewhere", "kestan-index 1\n");
  std::filesystem::create_directory("d/f");
  std::filesystem::create_symlink(Path("elsewhere"), "d/f/MANIFEST");
  std::filesystem::create_directory("d/g");
  ASSERT_EQ(mkfifo("d/g/MANIFEST", 0644), 0);
  const Scan scan = ScanOf({"d"});
  EXPECT_EQ(FilesOf(scan), names);
  EXPECT_EQ(SkipsOf(scan),
            (Names{"d/f/MANIFEST: symbolic link", "d/g/MANIFEST: pipe, socket or device"}));
}

TEST_F(ScanTest, IndexThatIsBeingMadeIsOneSkip) {
  for (const char* name : {"d/my.new/staging.lock", "d/my.new/1.segment", "d/my.news/staging.lock",
                           "d/other.new/a", "d/.new/staging.lock"}) {
    Write(name, "text");
  }
  const Scan scan = ScanOf({"d"});
  EXPECT_EQ(FilesOf(scan),
            (Names{"d/.new/staging.lock", "d/my.news/staging.lock", "d/other.new/a"}));
  EXPECT_EQ(SkipsOf(scan), Names{"d/my.new: an index that is being made"});
}

TEST_F(ScanTest, IndexesThatTheCommandMadeAreKnown) {
  Write("d/a", "text");
  ASSERT_EQ(Run({"index", "d/made", "d/a"}).status, 0);
  ASSERT_EQ(Run({"copy", "d/made", "d/copied"}).status, 0);
  EXPECT_EQ(SkipsOf(ScanOf({"d"})), (Names{"d/copied: another index", "d/made: another index"}));
}

TEST_F(ScanTest, EmptyFolderHasNoFiles) {
  std::filesystem::create_directory("d");
  EXPECT_EQ(Files({"d"}), Names{});
}

TEST_F(ScanTest, MissingPathIsNamed) {
  Write("a", "text");
  EXPECT_EQ(Complaint({"a", "b"}), "cannot read 'b': no such file or folder");
  EXPECT_EQ(Complaint({"a/b"}), "cannot read 'a/b': no such file or folder");
  EXPECT_EQ(Complaint({""}), "cannot read '': no such file or folder");
}

TEST_F(ScanTest, MissingPathOfAListIsSkipped) {
  Write("a", "text");
  const Scan scan = ScanRoots(
      {{Path("a"), "a", {}, MissingPath::kSkip}, {Path("b"), "b", {}, MissingPath::kSkip}}, {},
      "index");
  EXPECT_EQ(FilesOf(scan), Names{"a"});
  EXPECT_EQ(SkipsOf(scan), Names{"b: no such file or folder"});
  EXPECT_EQ(scan.missing, std::set<std::string>{Path("b")});
}

TEST_F(ScanTest, BrokenLinkGivenByHandIsMissing) {
  std::filesystem::create_symlink("nowhere", "a");
  EXPECT_EQ(Complaint({"a"}), "cannot read 'a': no such file or folder");
}

TEST_F(ScanTest, DevicesGivenByHandAreRefused) {
  EXPECT_EQ(Complaint({"/dev/null"}), "cannot read '/dev/null': neither a file nor a folder");
}

TEST_F(ScanTest, LineFeedInTheNameOfAnyFolderIsReported) {
  Write("d\nd/a", "text");
  EXPECT_EQ(SkipsOf(ScanOf({"."})), Names{"d\nd/a: its name holds a line feed"});
}

TEST_F(ScanTest, ExcludedFoldersAreNotWalked) {
  for (const char* name : {"d/.git/a", "d/b.o", "d/e/c.o", "d/e/c.txt"}) Write(name, "text");
  const Scan scan = ScanOf({"d"}, {{}, {Glob(".git"), Glob("e/*.o")}});
  EXPECT_EQ(FilesOf(scan), (Names{"d/b.o", "d/e/c.txt"}));
  EXPECT_EQ(SkipsOf(scan), (Names{"d/.git: excluded by '.git'", "d/e/c.o: excluded by 'e/*.o'"}));
}

TEST_F(ScanTest, PatternsAreHeldAgainstThePathBelowTheOneGiven) {
  Write("d/e/a.txt", "text");
  const NameFilter filter{{Glob("e/*")}, {}};
  EXPECT_EQ(FilesOf(ScanOf({"d"}, filter)), Names{"d/e/a.txt"});
  EXPECT_EQ(FilesOf(ScanOf({"d/"}, filter)), Names{"d/e/a.txt"});
  EXPECT_EQ(FilesOf(ScanOf({"d/e"}, filter)), Names{});
}

TEST_F(ScanTest, FilesGivenByHandAreTakenWhateverThePatterns) {
  Write("a.o", "text");
  EXPECT_EQ(FilesOf(ScanOf({"a.o"}, {{}, {Glob("*.o")}})), Names{"a.o"});
}

TEST_F(ScanTest, BordersAreNotCrossed) {
  for (const char* name : {"d/a", "d/e/b", "d/e/f/c", "d/ee"}) Write(name, "text");
  const std::set<std::string> borders{Path("d/e"), Path("d/ee")};
  EXPECT_EQ(FilesOf(ScanOf({"d"}, {}, "index", borders)), Names{"d/a"});
  EXPECT_EQ(FilesOf(ScanOf({"d/e"}, {}, "index", borders)), (Names{"d/e/b", "d/e/f/c"}));
  EXPECT_EQ(FilesOf(ScanOf({"d", "d/ee"}, {}, "index", borders)), (Names{"d/a", "d/ee"}));
}

TEST_F(ScanTest, IgnoredFilesAndFoldersAreSkips) {
  for (const char* name :
       {"d/.git/HEAD", "d/a.o", "d/a.txt", "d/out/b.txt", "d/e/c.o", "d/e/c.c"}) {
    Write(name, "text");
  }
  Write("d/.gitignore", "*.o\n/out/\n");
  Write("d/e/.ignore", "c.c\n");
  const Scan scan = ScanOf({"d"});
  EXPECT_EQ(FilesOf(scan), (Names{"d/.gitignore", "d/a.txt", "d/e/.ignore"}));
  const std::string git_ignore = "of '" + Path("d/.gitignore") + "': ";
  EXPECT_EQ(SkipsOf(scan), (Names{"d/.git: kept by git", "d/a.o: line 1 " + git_ignore + "*.o",
                                  "d/e/c.c: line 1 of '" + Path("d/e/.ignore") + "': c.c",
                                  "d/e/c.o: line 1 " + git_ignore + "*.o",
                                  "d/out: line 2 " + git_ignore + "/out/"}));
  for (const Skip& skip : scan.skips) EXPECT_EQ(skip.kind, SkipKind::kIgnored);
}

TEST_F(ScanTest, RootsMayTakeWhatIsIgnored) {
  for (const char* name : {"d/.git/HEAD", "d/a.o"}) Write(name, "text");
  Write("d/.gitignore", "*.o\n");
  const Scan scan = ScanRoots({{Path("d"), "d", {}, MissingPath::kThrow, "", true}}, {}, "index");
  EXPECT_EQ(FilesOf(scan), (Names{"d/.git/HEAD", "d/.gitignore", "d/a.o"}));
  EXPECT_EQ(SkipsOf(scan), Names{});
}

TEST_F(ScanTest, WhatIsNamedIsTakenThoughItIsIgnored) {
  for (const char* name : {"d/.git/HEAD", "d/out/a.txt", "d/out/a.o"}) Write(name, "text");
  Write("d/.gitignore", "*.o\nout/\n");
  EXPECT_EQ(Files({"d/out"}), Names{"d/out/a.txt"});  // patterns of the tree hold in it
  EXPECT_EQ(Files({"d/out/a.o"}), Names{"d/out/a.o"});
  EXPECT_EQ(Files({"d/.git"}), Names{"d/.git/HEAD"});
}

TEST_F(ScanTest, IgnoreFilesAboveTheRootCountToTheTopOfTheWorkTree) {
  for (const char* name : {"d/.git/HEAD", "d/e/f/a", "d/e/f/b", "d/e/f/c"}) Write(name, "text");
  Write("d/.gitignore", "/e/f/a\n");
  Write("d/.ignore", "b\n");
  Write(".ignore", "c\n");
  EXPECT_EQ(Files({"d/e"}), Names{"d/e/f/c"});
  EXPECT_EQ(Files({"d/e/f"}), Names{"d/e/f/c"});
  const ScanRoot part{Path("d/e/f"), "d/e/f", {}, MissingPath::kThrow, Path("d")};
  EXPECT_EQ(FilesOf(ScanRoots({part}, {}, "index")), Names{"d/e/f/c"});
}

TEST_F(ScanTest, PartOfARootIsIgnoredAsTheRootSays) {
  Write("d/.ignore", "a\n");
  for (const char* name : {"d/e/a", "d/e/b"}) Write(name, "text");
  const ScanRoot part{Path("d/e"), "d/e", {}, MissingPath::kThrow, Path("d")};
  EXPECT_EQ(FilesOf(ScanRoots({part}, {}, "index")), Names{"d/e/b"});
}

TEST_F(ScanTest, RootOfTheFileSystemMayBeGiven) {
  const Scan scan = ScanOf({"/"}, {{}, {Glob("?*")}});
  EXPECT_EQ(FilesOf(scan), Names{});
  ASSERT_FALSE(scan.skips.empty());
  for (const Skip& skip : scan.skips) {
    EXPECT_EQ(skip.name.rfind('/'), 0u) << skip.name;
  }
}

}  // namespace
}  // namespace kestan_cli
