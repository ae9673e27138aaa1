// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <kestan/search.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"

namespace kestan_tests {
namespace {

class IndexCommandTest : public CommandTest {
 protected:
  std::string List() { return ListOfIndex(Path("my.index"), Path("")); }
  std::string Search(const std::string& query) {
    return AnswersOfIndex(Path("my.index"), query, Path(""));
  }
  kestan::search::DocumentInfo Info(const std::string& name) {
    return DocumentsOfIndex(Path("my.index"))[Path(name)];
  }
};

TEST_F(IndexCommandTest, ReportsWhatWasDone) {
  Write("d/a", "cat dog\n");
  Write("d/b", "dog bird\n");
  Write("d/c", std::string(1, '\0'));
  std::filesystem::create_symlink("a", Path("d/l"));
  std::filesystem::create_symlink("b", Path("d/m"));
  EXPECT_EQ(Run({"index", "my.index", "d"}),
            Success("added 2, updated 0, moved 0, removed 0, unchanged 0, skipped 3 "
                    "(1 binary file, 2 links), 2 documents in 1 segment\n"
                    "  2 links: not followed; name what they lead to, if it lies elsewhere\n"
                    "  1 binary file: pictures, programs and the like hold no text\n"));
}

TEST_F(IndexCommandTest, StoresTitleAndSummary) {
  Add("d/a", "\n  The   cat\nsat on\n the mat.\n");
  EXPECT_EQ(Info("d/a").title, "The cat");
  EXPECT_EQ(Info("d/a").summary, "sat on the mat.");
}

TEST_F(IndexCommandTest, StoresPostingsOfCleanedWords) {
  Add("a", "Don't e-mail 42 times.\n");
  EXPECT_EQ(Info("a").words, 6u);
  EXPECT_EQ(Search("\"don't e-mail 42 times\""), "100 a\n");
  EXPECT_EQ(Search("\"don t e mail 42 times\""), "100 a\n");
}

TEST_F(IndexCommandTest, TextCannotTouchSystemRecords) {
  Add("a", "g-code g-opts d-a c-\x01 t-a g-avail\n");
  EXPECT_TRUE(IsWhole(Path("my.index")));
  EXPECT_EQ(Search("\"g code g opts d a c t a g avail\""), "100 a\n");
}

TEST_F(IndexCommandTest, UnchangedFilesAreLeftAsTheyAre) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  EXPECT_EQ(Run({"index", "my.index", "d"}),
            Success("added 0, updated 0, moved 0, removed 0, unchanged 2, skipped 0, 2 documents "
                    "in 1 segment\n"));
  EXPECT_EQ(List(), "d/a\nd/b\n");
  EXPECT_EQ(Search("cat"), "100 d/a\n");
}

TEST_F(IndexCommandTest, NewVersionReplacesTheOld) {
  Add("a", "Old title\nold summary\ncat\n");
  Add("a", "New\ndog\n");
  EXPECT_EQ(Search("cat"), "");
  EXPECT_EQ(Search("dog"), "100 a\n");
  EXPECT_EQ(Info("a").title, "New");
  EXPECT_EQ(Info("a").summary, "dog");
}

TEST_F(IndexCommandTest, EmptiedFileLosesItsTitle) {
  Add("a", "Title\nsummary\n");
  Add("a", "");
  EXPECT_EQ(Info("a").title, "");
  EXPECT_EQ(Info("a").summary, "");
  EXPECT_EQ(List(), "a\n");
}

TEST_F(IndexCommandTest, DoesNotIndexTheIndex) {
  Write("a", "cat\n");
  ASSERT_EQ(Run({"index", "my.index", "."}).status, 0);
  EXPECT_EQ(Run({"index", "my.index", "."}),
            Success("added 0, updated 0, moved 0, removed 0, unchanged 1, skipped 0, 1 document "
                    "in 1 segment\n"));
  EXPECT_EQ(List(), "a\n");
}

TEST_F(IndexCommandTest, BracketsInNamesAreNoPatterns) {
  Write("a", "cat\n");
  Write("b", "cat\n");
  Write("[a,b]", "dog\n");
  ASSERT_EQ(Run({"index", "my.index", "[a,b]"}).status, 0);
  EXPECT_EQ(List(), "[a,b]\n");
}

// ---- Bad input: the index stays as it was, or is not made at all ----

class BadInputTest : public IndexCommandTest {
 protected:
  void SetUp() override { Add("good", "cat\n"); }

  // Runs `kestan index` on `paths`, with a new index and with one that is there.
  void ExpectRefusal(
      std::vector<std::string> paths, const std::string& what, const InChild& prepare = [] {}) {
    const auto before = FilesOfIndex(Path("my.index"));
    paths.insert(paths.begin(), {"index", "my.index"});
    EXPECT_EQ(Run(paths, prepare), Failure(what));
    EXPECT_EQ(FilesOfIndex(Path("my.index")), before);
    paths[1] = "new.index";
    EXPECT_EQ(Run(paths, prepare), Failure(what));
    EXPECT_FALSE(std::filesystem::exists(Path("new.index")));
  }
};

TEST_F(BadInputTest, MissingFile) {
  ExpectRefusal({"good", "bad"}, "cannot read 'bad': no such file or folder");
}

// One bad file among thousands is no reason to index none.
class BadFileTest : public IndexCommandTest {
 protected:
  // Runs `kestan index` on the folder `d`, where one file is good, with a new index.
  void ExpectSkip(
      const std::string& what, const std::string& reason, const std::string& skipped,
      const std::string& remedy, const InChild& prepare = [] {}) {
    Write("d/good", "cat\n");
    OpenFolderToAll(0777);
    EXPECT_EQ(
        Run({"index", "my.index", "d"}, prepare),
        (Outcome{1,
                 "added 1, updated 0, moved 0, removed 0, unchanged 0, skipped 1 (" + skipped +
                     "), 1 document in 1 segment\n  " + skipped + ": " + remedy + "\n",
                 "kestan: skipped '" + what + "': " + reason + "\n"}));
    EXPECT_EQ(List(), "d/good\n");
  }
};

TEST_F(BadFileTest, UnreadableFile) {
  Write("d/bad", "dog\n");
  ASSERT_EQ(chmod(Path("d/bad").c_str(), 0), 0);
  ExpectSkip("d/bad", "permission denied", "1 unreadable", "check their permissions",
             GiveUpPrivileges);
}

TEST_F(BadFileTest, UnreadableDirectory) {
  Write("d/bad/a", "dog\n");
  ASSERT_EQ(chmod(Path("d/bad").c_str(), 0), 0);
  ExpectSkip("d/bad", "permission denied", "1 unreadable", "check their permissions",
             GiveUpPrivileges);
  ASSERT_EQ(chmod(Path("d/bad").c_str(), 0755), 0);
}

TEST_F(BadFileTest, NameWithALineFeed) {
  Write("d/two\nlines", "dog\n");
  ExpectSkip("d/two\\nlines", "its name holds a line feed", "1 unusable name",
             "rename them, without line feeds");
}

TEST_F(BadInputTest, EmptyDirectory) {
  std::filesystem::create_directory(Path("d"));
  ExpectRefusal({"d"}, "nothing to index: no text files, 0 binary files, 0 links");
}

TEST_F(BadInputTest, DirectoryWithoutTextFiles) {
  Write("d/a", std::string(3, '\0'));
  std::filesystem::create_symlink("../good", Path("d/l"));
  ExpectRefusal({"d"}, "nothing to index: no text files, 1 binary file, 1 link");
}

TEST_F(BadInputTest, IndexAsTheOnlyInput) {
  const auto before = FilesOfIndex(Path("my.index"));
  EXPECT_EQ(Run({"index", "my.index", "my.index"}),
            Failure("nothing to index: no text files, 0 binary files, 0 links"));
  EXPECT_EQ(FilesOfIndex(Path("my.index")), before);
}

TEST_F(BadInputTest, FolderWithOtherFilesIsNoIndex) {
  Write("d/a", "cat\n");
  EXPECT_EQ(Run({"index", "d", "good"}),
            Failure("index 'd': the folder holds other files and no index"));
  EXPECT_FALSE(std::filesystem::exists(Path("d/writer.lock")));
}

TEST_F(BadInputTest, IndexOfOneFileIsOnlyRead) {
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(Path("one.file").c_str(), 1), 0);
  engine.AddDocumentWords("a", "cat");
  engine.CloseIndex();
  const std::string before = BytesOfFile(Path("one.file"));
  const Outcome outcome = Run({"index", "one.file", "good"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("kestan convert"), std::string::npos) << outcome.err;
  EXPECT_EQ(BytesOfFile(Path("one.file")), before);
}

TEST_F(BadInputTest, FolderThatCannotBeMade) {
  EXPECT_EQ(Run({"index", "gone/my.index", "good"}),
            Failure("cannot make index 'gone/my.index': no such file or folder"));
}

TEST_F(BadInputTest, EmptyPath) {
  EXPECT_EQ(Run({"index", "my.index", ""}), Failure("cannot read '': no such file or folder"));
}

// ---- Other writers, signals ----

using BusyIndexTest = IndexCommandTest;

TEST_F(BusyIndexTest, SecondWriterIsToldToTryLater) {
  Add("a", "cat\n");
  auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
  ASSERT_TRUE(writer.ok());
  const Outcome outcome = Run({"index", "my.index", "a"});
  EXPECT_EQ(outcome.status, 75);
  EXPECT_NE(outcome.err.find("process " + std::to_string(getpid()) + " is writing it"),
            std::string::npos)
      << outcome.err;
}

TEST_F(BusyIndexTest, ReadOnlyIndexWithoutChangesNeedsNoPermission) {
  Add("a", "cat\n");
  OpenFolderToAll(0755);
  const auto before = FilesOfIndex(Path("my.index"));
  EXPECT_EQ(Run({"index", "my.index", "a"}, GiveUpPrivileges).status, 0);
  Write("a", "dog\n");
  EXPECT_EQ(Run({"index", "my.index", "a"}, GiveUpPrivileges).status, 2);
  EXPECT_EQ(FilesOfIndex(Path("my.index")), before);
}

class SignalTest : public IndexCommandTest {
 protected:
  // Starts a run that waits in a converter for as long as the file "wait" exists, and ends it by
  // `signal` while it waits.
  //   Returns  the signal that ended it; 0 if it ended otherwise.
  int EndWhileReading(int signal) {
    Write("tool", "#!/bin/sh\ntouch started\nwhile [ -e wait ]; do sleep 0.01; done\ncat \"$1\"\n");
    EXPECT_EQ(chmod(Path("tool").c_str(), 0755), 0);
    Write("d/a", "dog\n");
    Write("d/b.x", "dog\n");
    Write("d/c", "dog\n");
    Write("wait", "");
    const TempDir streams;
    const pid_t child = Start({"index", "my.index", "d", "--converter", "x=./tool {}"}, streams);
    while (!std::filesystem::exists(Path("started"))) usleep(1000);
    kill(child, signal);
    std::filesystem::remove(Path("wait"));
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }
};

TEST_F(SignalTest, LeavesTheIndexAsItWas) {
  Add("old", "cat\n");
  const auto before = FilesOfIndex(Path("my.index"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    std::filesystem::remove(Path("started"));
    EXPECT_EQ(EndWhileReading(signal), signal);
    EXPECT_EQ(FilesOfIndex(Path("my.index")), before);
  }
}

TEST_F(SignalTest, LeavesNoNewIndex) {
  EXPECT_EQ(EndWhileReading(SIGINT), SIGINT);
  EXPECT_FALSE(std::filesystem::exists(Path("my.index")));
}

}  // namespace
}  // namespace kestan_tests
