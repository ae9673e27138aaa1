#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;
using kestan_tests::Units;
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
  const auto before = fs::last_write_time("my.index");
  ASSERT_EQ(chmod("my.index", 0444), 0);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(fs::last_write_time("my.index"), before);
}

TEST_F(IndexChangesTest, TouchedFileIsUnchangedAndItsNewTimeIsKept) {
  Write("d/a", "cat\n");
  Index();
  const std::uint32_t added = static_cast<unsigned char>(Record("d-d/a")[0]);
  const timespec times[] = {{0, UTIME_OMIT}, {1000000000, 5}};
  ASSERT_EQ(utimensat(AT_FDCWD, "d/a", times, 0), 0);
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(Record("u-d/a").substr(0, 34), "size=4 mtime=1000000000.000000005 ");
  EXPECT_EQ(Record("cat"), Units({1, 1, 1}));
  EXPECT_EQ(static_cast<unsigned char>(Record("d-d/a")[0]), added);
}

TEST_F(IndexChangesTest, AllFilesAreIndexedAgainOnDemand) {
  Write("d/a", "the cat\n");
  Index();
  options_.all = true;
  options_.stop_words = "english";
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("the"), "");
}

TEST_F(IndexChangesTest, DocumentsOfOtherHostsAreUpdatedAndKeepTheirRecords) {
  Write("d/a", "cat\n");
  ASSERT_EQ(engine_.OpenIndex("my.index", 1), 0);
  engine_.AddDocumentWords("d/a", "old");
  engine_.DBPutUser("d/a", "my notes\n");
  engine_.CloseIndex();
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  const std::string record = Record("u-d/a");
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
  EXPECT_EQ(kestan_tests::Dump("my.index").count("u-d/a"), 0u);
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
  options_.exclude = {"b"};
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
  ASSERT_EQ(chmod("my.index", 0666), 0);
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
  ASSERT_EQ(engine_.OpenIndex("my.index", 1), 0);
  const std::string record = std::string(engine_.DBGetUser("d/a")) + "\nmy notes";
  engine_.DBPutUser("d/a", record.c_str());
  engine_.CloseIndex();
  fs::rename("d/a", "d/b");
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 0));
  EXPECT_EQ(List(), "d/b\n");
  EXPECT_EQ(Search("cat"), "100 d/b\n");
  EXPECT_EQ(Record("cat"), Units({1, 1, 3}));
  EXPECT_EQ(Record("t-d/b"), "Title");
  EXPECT_EQ(Record("s-d/b"), "summary cat");
  EXPECT_EQ(Record("u-d/b"), record);
  for (const char* key : {"t-d/a", "s-d/a", "u-d/a"}) {
    EXPECT_EQ(kestan_tests::Dump("my.index").count(key), 0u) << key;
  }
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
  EXPECT_EQ(Record("t-d/p.txt"), "<title>Page</title><b class=bold>cat</b>");
  fs::rename("d/p.txt", "d/p.htm");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("bold"), "");
  EXPECT_EQ(Record("t-d/p.htm"), "Page");
}

TEST_F(IndexChangesTest, RenameToAnotherFormatKeepsTheUsersRecord) {
  Write("d/p.html", "<b>cat\n");
  Index();
  ASSERT_EQ(engine_.OpenIndex("my.index", 1), 0);
  const std::string record = std::string(engine_.DBGetUser("d/p.html")) + "\nmy notes";
  engine_.DBPutUser("d/p.html", record.c_str());
  engine_.CloseIndex();
  fs::rename("d/p.html", "d/p.md");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Record("u-d/p.md"), record);
  EXPECT_EQ(kestan_tests::Dump("my.index").count("u-d/p.html"), 0u);
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
  options_.converters = {"x=tr a-z b-za {}", "x=rev {}", "y=rev {}"};
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
  options_.stop_words = "english";
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
  EXPECT_EQ(Search("the"), "");
  fs::rename("d/b", "d/c");
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 0));
  options_.strip_encoded = true;
  fs::rename("d/c", "d/d");
  EXPECT_EQ(Index(), Report(0, 1, 0, 0, 0));
}

TEST_F(IndexChangesTest, TouchedFileUnderOtherOptionsIsAnUpdate) {
  Write("d/a", "the cat\n");
  Index();
  const timespec times[] = {{0, UTIME_OMIT}, {1000000000, 5}};
  ASSERT_EQ(utimensat(AT_FDCWD, "d/a", times, 0), 0);
  options_.stop_words = "english";
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
  options_.converters = {"x=./tool {}"};
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
  EXPECT_EQ(List(), "d/link/../f\n");
  EXPECT_EQ(Search("dog"), "100 d/link/../f\n");
  EXPECT_EQ(Index(), Report(0, 0, 0, 0, 1));
}

TEST_F(IndexChangesTest, DocumentReachedThroughALinkIsPrunedByItsOwnPathOnly) {
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
  options_.paths = {"d/link/.."};
  EXPECT_EQ(Index(), Report(0, 0, 0, 1, 0));
  EXPECT_EQ(List(), "d/f\n");
}

// ---- Room ----

class RoomTest : public RunIndexTest {
 protected:
  // Leaves room for `count` more documents.
  void LeaveRoom(unsigned count) {
    kestan_tests::Plant("my.index", {{"g-code", Units({65535 - count})}});
  }

  void SetUp() override {
    RunIndexTest::SetUp();
    Write("d/a", "cat\n");
    Write("d/b", "dog\n");
    Index();
  }
};

TEST_F(RoomTest, UnchangedFilesNeedNone) {
  LeaveRoom(1);
  Write("d/c", "bird\n");
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 2));
}

TEST_F(RoomTest, MovedTouchedAndBinaryFilesNeedNone) {
  LeaveRoom(0);
  fs::rename("d/a", "d/c");
  Write("d/binary", std::string(1, '\0'));
  const timespec times[] = {{0, 0}, {1000000000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, "d/b", times, 0), 0);
  EXPECT_EQ(Index(), Report(0, 0, 1, 0, 1, "1 (1 binary file)"));
}

TEST_F(RoomTest, FilesReadInAnotherWayNeedIt) {
  LeaveRoom(0);
  fs::rename("d/a", "d/a.html");
  EXPECT_EQ(Index(),
            "index 'my.index' has room for 0 more documents, not for 1; shrinking it may make "
            "room\n");
}

TEST_F(RoomTest, NewVersionsNeedIt) {
  LeaveRoom(1);
  Write("d/a", "bird\n");
  Write("d/c", "fish\n");
  const std::string before = IndexBytes();
  EXPECT_EQ(Index(),
            "index 'my.index' has room for 1 more document, not for 2; shrinking it may make "
            "room\n");
  EXPECT_EQ(IndexBytes(), before);
}

}  // namespace
}  // namespace kestan_cli
