// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;
using IndexChangesTest = RunIndexTest;

// ---- Changes ----

TEST_F(IndexChangesTest, OnlyWhatChangedIsIndexed) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0));
  Write("d/b", "bird\n");
  Write("d/c", "fish\n");
  EXPECT_EQ(Index(), Report(1, 1, 0, 0, 1));
  EXPECT_EQ(status_, kDone);
  EXPECT_EQ(Search("dog"), "");
  EXPECT_EQ(Search("bird"), "100 d/b\n");
}

TEST_F(IndexChangesTest, ChangeThatKeepsTheSizeIsSeen) {
  Write("d/a", "cat\n");
  Index();
  Write("d/a", "dog\n");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
}

TEST_F(IndexChangesTest, UnchangedFilesAreNotRead) {
  Write("d/a", "cat\n");
  Index();
  const timespec times[] = {{1000000000, 0}, {0, UTIME_OMIT}};
  ASSERT_EQ(utimensat(AT_FDCWD, "d/a", times, 0), 0);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  struct stat status {};
  ASSERT_EQ(stat("d/a", &status), 0);
  EXPECT_EQ(status.st_atim.tv_sec, 1000000000);  // a mount without access times proves nothing here
}

TEST_F(IndexChangesTest, RunWithoutChangesLeavesTheIndexAlone) {
  Write("d/a", "cat\n");
  Index();
  const auto before = kestan_tests::FilesOfIndex("my.index");
  const auto time = fs::last_write_time("my.index");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(kestan_tests::FilesOfIndex("my.index"), before);
  EXPECT_EQ(fs::last_write_time("my.index"), time);
}

TEST_F(IndexChangesTest, TouchedFileIsUnchangedAndItsNewTimeIsKept) {
  Write("d/a", "cat\n");
  Index();
  const auto added = Info("d/a").added;
  const timespec times[] = {{0, UTIME_OMIT}, {1000000000, 5}};
  ASSERT_EQ(utimensat(AT_FDCWD, "d/a", times, 0), 0);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(Info("d/a").host_data.substr(0, 34), "size=4 mtime=1000000000.000000005 ");
  EXPECT_EQ(Search("cat"), "100 d/a\n");
  EXPECT_EQ(Info("d/a").added, added);
}

TEST_F(IndexChangesTest, AllFilesAreIndexedAgainOnDemand) {
  Write("d/a", "the cat\n");
  Index();
  options_.all = true;
  options_.reading.stop_words = "english";
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("the"), "");
}

TEST_F(IndexChangesTest, DocumentsOfOtherHostsAreUpdatedAndKeepTheirRecords) {
  Write("d/a", "cat\n");
  kestan_tests::ChangeIndex("my.index", [this](kestan::search::IndexWriter& writer) {
    EXPECT_TRUE(writer.Add({Path("d/a"), "old", "", "", "", "my notes\n"}).ok());
  });
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("old"), "");
  const std::string record = Info("d/a").host_data;
  EXPECT_EQ(record.substr(record.find('\n')), "\nmy notes\n");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
}

// ---- Files that vanished ----

TEST_F(IndexChangesTest, VanishedFilesStayUnlessPruned) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  Index();
  fs::remove("d/a");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(List(), "d/a\nd/b\n");
  options_.prune = true;
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 1));
  EXPECT_EQ(List(), "d/b\n");
}

TEST_F(IndexChangesTest, OnlyDocumentsBelowThePathsArePruned) {
  for (const char* name : {"d/a", "d/b", "dd/a", "e/a"}) Write(name, "cat\n");
  options_.paths = {"d", "dd", "e"};
  Index();
  for (const char* name : {"d/a", "dd/a", "e/a"}) fs::remove(name);
  options_.paths = {"d"};
  options_.prune = true;
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 1));
  EXPECT_EQ(List(), "d/b\ndd/a\ne/a\n");
}

TEST_F(IndexChangesTest, LastFileBelowAPathMayBePruned) {
  Write("d/a", "cat\n");
  Index();
  fs::remove("d/a");
  options_.prune = true;
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 0));
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 0));
}

TEST_F(IndexChangesTest, FilesThatAreThereAreNotPruned) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  Write("d/c", "bird\n");
  Index();
  Write("d/a", std::string(1, '\0'));
  fs::remove("d/c");
  fs::create_symlink("b", "d/c");
  options_.prune = true;
  options_.reading.exclude = {"b"};
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 0, "3 (1 binary file, 1 link, 1 excluded)"));
  EXPECT_EQ(List(), "d/a\nd/b\nd/c\n");
}

TEST_F(IndexChangesTest, FolderThatCannotBeReadIsNotPruned) {
  Write("d/e/a", "cat\n");
  Write("d/b", "dog\n");
  Index();
  options_.prune = true;
  ASSERT_EQ(chmod("d/e", 0), 0);
  OpenFolderToAll(0777);
  ASSERT_EQ(chmod("my.index", 0777), 0);
  for (const auto& file : fs::directory_iterator("my.index")) {
    fs::permissions(file, fs::perms::all);
  }
  const pid_t child = fork();
  if (child == 0) {
    kestan_tests::GiveUpPrivileges();
    Index();
    _exit(status_);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), kIncomplete);
  ASSERT_EQ(chmod("d/e", 0755), 0);
  EXPECT_EQ(List(), "d/b\nd/e/a\n");
}

TEST_F(IndexChangesTest, RenamedFileIsMovedWithAllThatBelongsToIt) {
  Write("d/a", "Title\nsummary cat\n");
  Index();
  AddToRecord("d/a", "\nmy notes");
  const std::string record = Info("d/a").host_data;
  fs::rename("d/a", "d/b");
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 0));
  EXPECT_EQ(List(), "d/b\n");
  EXPECT_EQ(Search("cat"), "100 d/b\n");
  EXPECT_EQ(Info("d/b").title, "Title");
  EXPECT_EQ(Info("d/b").summary, "summary cat");
  EXPECT_EQ(Info("d/b").host_data, record);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
}

// ---- Renamed files that are read in another way ----

TEST_F(IndexChangesTest, RenameToAnotherFormatIsAnUpdate) {
  Write("d/p.html", "<title>Page</title><b class=bold>cat</b>\n");
  Index();
  fs::rename("d/p.html", "d/p.txt");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(List(), "d/p.txt\n");
  EXPECT_EQ(Search("bold"), "100 d/p.txt\n");
  EXPECT_EQ(Info("d/p.txt").title, "<title>Page</title><b class=bold>cat</b>");
  fs::rename("d/p.txt", "d/p.htm");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("bold"), "");
  EXPECT_EQ(Info("d/p.htm").title, "Page");
}

TEST_F(IndexChangesTest, RenameToAnotherFormatKeepsTheUsersRecord) {
  Write("d/p.html", "<b>cat\n");
  Index();
  AddToRecord("d/p.html", "\nmy notes");
  const std::string record = Info("d/p.html").host_data;
  fs::rename("d/p.html", "d/p.md");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Info("d/p.md").host_data, record);
  EXPECT_EQ(List(), "d/p.md\n");
}

TEST_F(IndexChangesTest, RenameWithinAFormatIsAMove) {
  Write("d/p.html", "<b>cat\n");
  Write("d/q", "dog\n");
  Index();
  fs::rename("d/p.html", "d/p.htm");
  fs::rename("d/q", "d/q.txt");
  EXPECT_EQ(Index(), Report(0, 0, 2, 0, 0));
}

TEST_F(IndexChangesTest, RenameToOrFromAConverterIsAnUpdate) {
  Write("d/a.x", "cat\n");
  options_.reading.converters = {"x=tr a-z b-za {}", "x=rev {}", "y=rev {}"};
  Index();
  fs::rename("d/a.x", "d/a.txt");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("cat"), "100 d/a.txt\n");
  fs::rename("d/a.txt", "d/a.x");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("tac"), "100 d/a.x\n");
  fs::rename("d/a.x", "d/a.y");
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 0));
}

TEST_F(IndexChangesTest, RenameUnderOtherOptionsIsAnUpdate) {
  Write("d/a", "the cat\n");
  Index();
  fs::rename("d/a", "d/b");
  options_.reading.stop_words = "english";
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("the"), "");
  fs::rename("d/b", "d/c");
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 0));
  options_.reading.strip_encoded = true;
  fs::rename("d/c", "d/d");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
}

TEST_F(IndexChangesTest, TouchedFileUnderOtherOptionsIsAnUpdate) {
  Write("d/a", "the cat\n");
  Index();
  const timespec times[] = {{0, UTIME_OMIT}, {1000000000, 5}};
  ASSERT_EQ(utimensat(AT_FDCWD, "d/a", times, 0), 0);
  options_.reading.stop_words = "english";
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("the"), "");
}

TEST_F(IndexChangesTest, OfTwoVanishedFilesTheOneThatWasReadAlikeIsMoved) {
  Write("d/a.html", "<b>cat\n");
  Write("d/b.txt", "<b>cat\n");
  Index();
  fs::rename("d/a.html", "d/d.htm");
  fs::rename("d/b.txt", "d/c.txt");
  EXPECT_EQ(Index(), Report(0, 0, 2, 0, 0));
  EXPECT_EQ(Search("b"), "100 d/c.txt\n");
}

// ---- Copies ----

TEST_F(IndexChangesTest, CopyIsNoMove) {
  Write("d/a", "cat\n");
  Index();
  Write("d/b", "cat\n");
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 1));
}

TEST_F(IndexChangesTest, OneOfTwoCopiesIsMovedOnlyOnce) {
  Write("d/a", "cat\n");
  Index();
  fs::rename("d/a", "d/b");
  Write("d/c", "cat\n");
  EXPECT_EQ(Index(), Report(1, 0, 1, 0, 0));
  EXPECT_EQ(List(), "d/b\nd/c\n");
}

TEST_F(IndexChangesTest, FileFromElsewhereIsNoMove) {
  Write("e/a", "cat\n");
  Write("d/x", "dog\n");
  options_.paths = {"d", "e"};
  Index();
  fs::rename("e/a", "d/a");
  options_.paths = {"d"};
  options_.prune = true;
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 1));
  EXPECT_EQ(List(), "d/a\nd/x\ne/a\n");
}

TEST_F(IndexChangesTest, MovedFilesAreNotConvertedAgain) {
  Write("d/a.x", "cat\n");
  Write("tool", "#!/bin/sh\necho run >>log\ncat \"$1\"\n");
  ASSERT_EQ(chmod("tool", 0755), 0);
  options_.reading.converters = {"x=./tool {}"};
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 0));
  fs::rename("d/a.x", "d/b.x");
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 0));
  EXPECT_EQ(kestan_tests::BytesOfFile("log"), "run\n");
  EXPECT_EQ(Search("cat"), "100 d/b.x\n");
}

// ---- Names ----

TEST_F(IndexChangesTest, WayUpFromALinkNamesTheFileThatIsIndexed) {
  Write("d/f", "cat\n");
  Write("e/f", "dog\n");
  fs::create_directory("e/inner");
  fs::create_symlink("../e/inner", "d/link");
  options_.paths = {"d/link/../f"};
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 0));
  EXPECT_EQ(List(), "e/f\n");
  EXPECT_EQ(Search("dog"), "100 e/f\n");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
}

TEST_F(IndexChangesTest, DocumentReachedThroughALinkIsPrunedByItsRealPathOnly) {
  Write("d/f", "cat\n");
  Write("e/f", "dog\n");
  fs::create_directory("e/inner");
  fs::create_symlink("../e/inner", "d/link");
  options_.paths = {"d/link/..", "d"};
  Index();
  fs::remove("e/f");
  options_.prune = true;
  options_.paths = {"d"};
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1, "1 (1 link)"));
  options_.paths = {"e"};
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 0));
  EXPECT_EQ(List(), "d/f\n");
}

TEST_F(IndexChangesTest, FileIsOneDocumentFromEveryFolder) {
  Write("d/e/a", "cat\n");
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 0));
  fs::current_path("d/e");
  options_.paths = {"a", ".", "..", "../../d/e/a", Path("d/./e//a")};
  testing::internal::CaptureStdout();
  ASSERT_EQ(RunIndex("../../my.index", options_), kDone);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "added 0, updated 0, moved 0, removed 0, unchanged 1, skipped 0, 1 document in 1 "
            "segment\n");
  fs::current_path(Path(""));
  EXPECT_EQ(List(), "d/e/a\n");
}

TEST_F(IndexChangesTest, FileReachedThroughALinkIsTheSameDocument) {
  Write("d/a", "cat\n");
  fs::create_symlink("d", "link");
  Index();
  options_.paths = {"link", "link/a"};
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(List(), "d/a\n");
}

}  // namespace
}  // namespace kestan_cli
