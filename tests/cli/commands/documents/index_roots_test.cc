// SPDX-License-Identifier: GPL-3.0-or-later
// What an index remembers of the paths that it is kept up to date with.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "cli/sync/root_trust.h"
#include "cli/sync/roots.h"
#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

class IndexRootsTest : public RunIndexTest {
 protected:
  void SetUp() override {
    RunIndexTest::SetUp();
    options_.reset = false;
    for (const char* name : {"d/a.txt", "d/b.log", "d/e/c.txt", "x/y"}) Write(name, "cat\n");
  }

  // Runs with these paths and the options of `options_`, and drops these options.
  std::string IndexPaths(const std::vector<std::string>& paths) {
    options_.paths = paths;
    std::string report = Index();
    options_ = IndexOptions();
    return report;
  }

  // Brings all roots up to date.
  std::string IndexAll() { return IndexPaths({}); }

  static std::string Property() {
    const auto reader = kestan::search::IndexReader::Open("my.index");
    return reader.ok() ? *reader->Property(kRootsProperty) : "none";
  }

  static Roots Remembered() { return DecodeRoots(Property(), "my.index"); }

  static void SetProperty(const std::string& value) {
    kestan_tests::ChangeIndex("my.index", [&](kestan::search::IndexWriter& writer) {
      writer.SetProperty(kRootsProperty, value);
    });
  }
};

TEST_F(IndexRootsTest, FilesThatBecomeIgnoredAreRemovedAsOthersThatAreGone) {
  EXPECT_EQ(IndexPaths({"d"}), Report(3, 0, 0, 0, 0));
  Write("d/.ignore", "*.log\n/e/\n");
  EXPECT_EQ(IndexAll(), Report(1, 0, 0, 0, 1, "2 (2 ignored)"));
  options_.prune = true;
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 2, 2, "2 (2 ignored)"));
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 2, "2 (2 ignored)"));
}

TEST_F(IndexRootsTest, TakingIgnoredFilesIsRemembered) {
  Write("d/.ignore", "*.log\n");
  options_.reading.no_ignore = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(4, 0, 0, 0, 0));
  EXPECT_TRUE(Remembered().begin()->second.reading.no_ignore);
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 4));
  options_.reset = true;
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 3, "1 (1 ignored)"));
}

TEST_F(IndexRootsTest, IgnoredPathThatIsNamedStaysIndexed) {
  Write("d/.ignore", "*.log\n");
  options_.prune = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(3, 0, 0, 0, 0, "1 (1 ignored)"));
  EXPECT_EQ(IndexPaths({"d/b.log"}), Report(1, 0, 0, 0, 0));
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 4));
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 0, 4));
}

TEST_F(IndexRootsTest, IndexAloneBringsAllRootsUpToDate) {
  EXPECT_EQ(IndexPaths({"d", "x/y"}), Report(4, 0, 0, 0, 0));
  Write("d/new", "dog\n");
  Write("x/y", "bird\n");
  Write("x/other", "bird\n");
  EXPECT_EQ(IndexAll(), Report(1, 1, 0, 0, 3));
  fs::current_path("x");
  testing::internal::CaptureStdout();
  EXPECT_EQ(RunIndex("../my.index", {}), kDone);
  EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 54),
            Report(0, 0, 0, 0, 5).substr(0, 54));
}

TEST_F(IndexRootsTest, IndexThatRemembersNothingNeedsAPath) {
  EXPECT_EQ(IndexAll(), "nothing to index: no PATH, and index 'my.index' remembers none\n");
  kestan_tests::ChangeIndex("my.index", [](kestan::search::IndexWriter& writer) {
    EXPECT_TRUE(writer.Add({"a", "cat", "", "", "", ""}).ok());
  });
  EXPECT_EQ(IndexAll(), "nothing to index: no PATH, and index 'my.index' remembers none\n");
}

TEST_F(IndexRootsTest, EachRootKeepsItsOwnOptions) {
  options_.reading.exclude = {"*.log"};
  EXPECT_EQ(IndexPaths({"d"}), Report(2, 0, 0, 0, 0, "1 (1 excluded)"));
  options_.reading.stop_words = "english";
  EXPECT_EQ(IndexPaths({"x"}), Report(1, 0, 0, 0, 0));
  Write("d/f.log", "the dog\n");
  Write("d/f.txt", "the dog\n");
  Write("x/f.log", "the dog\n");
  EXPECT_EQ(IndexAll(), Report(2, 0, 0, 0, 3, "2 (2 excluded)"));
  EXPECT_EQ(List(), "d/a.txt\nd/e/c.txt\nd/f.txt\nx/f.log\nx/y\n");
  EXPECT_EQ(Search("\"the dog\""), "100 d/f.txt\n");
}

TEST_F(IndexRootsTest, PathWithoutOptionsUsesThoseOfItsRoot) {
  options_.reading.include = {"*.txt"};
  IndexPaths({"d"});
  Write("d/f.log", "dog\n");
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 0, 2, "2 (2 excluded)"));
}

TEST_F(IndexRootsTest, GivenOptionsReplaceThoseOfTheRoot) {
  options_.reading.exclude = {"*.log"};
  options_.prune = true;
  IndexPaths({"d"});
  options_.reading.exclude = {"e"};
  EXPECT_EQ(IndexPaths({"d"}), Report(1, 0, 0, 0, 1, "1 (1 excluded)"));
  const RootOptions options = Remembered().at(Path("d"));
  EXPECT_EQ(options.reading.exclude, std::vector<std::string>{"e"});
  EXPECT_TRUE(options.prune) << "it is an option of its own";
}

TEST_F(IndexRootsTest, PruneIsRememberedUntilItIsTakenBack) {
  options_.prune = true;
  IndexPaths({"d"});
  fs::remove("d/a.txt");
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 1, 2));
  fs::remove("d/b.log");
  options_.prune = false;
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(List(), "d/b.log\nd/e/c.txt\n");
}

TEST_F(IndexRootsTest, PruneWithoutAPathIsForAllRoots) {
  IndexPaths({"d", "x"});
  fs::remove("d/a.txt");
  fs::remove("x/y");
  options_.prune = true;
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 2, 2));
  EXPECT_TRUE(Remembered().at(Path("x")).prune);
}

TEST_F(IndexRootsTest, OptionsOfReadingNeedAPath) {
  IndexPaths({"d"});
  options_.reading.exclude = {"e"};
  EXPECT_EQ(IndexAll(),
            "options of reading files are those of a PATH: name it, or set them for all with "
            "--reset\n");
}

TEST_F(IndexRootsTest, ResetUsesOnlyWhatIsGiven) {
  options_.reading.exclude = {"*.log"};
  options_.prune = true;
  IndexPaths({"d"});
  options_.reset = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(1, 0, 0, 0, 2));
  EXPECT_EQ(Property(), "{\"version\":1,\"roots\":[{\"path\":\"" + Path("d") + "\"}]}");
  options_.reset = true;
  options_.reading.exclude = {"e"};
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 2, "1 (1 excluded)"));
  EXPECT_EQ(Remembered().at(Path("d")).reading.exclude, std::vector<std::string>{"e"});
}

TEST_F(IndexRootsTest, ForgottenPathsKeepTheirDocuments) {
  IndexPaths({"d", "x"});
  options_.forget = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 0, 0));
  Write("d/new", "dog\n");
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 1));
  EXPECT_EQ(List(), "d/a.txt\nd/b.log\nd/e/c.txt\nx/y\n");
}

TEST_F(IndexRootsTest, ForgottenPathsLoseTheirDocumentsOnDemand) {
  IndexPaths({"d", "x"});
  options_.reading.exclude = {"z"};
  IndexPaths({"d/e"});  // a root of its own
  options_.forget = true;
  options_.prune = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 2, 0));
  EXPECT_EQ(List(), "d/e/c.txt\nx/y\n") << "what belongs to other roots stays";
}

TEST_F(IndexRootsTest, PathThatIsNoRootCannotBeForgotten) {
  IndexPaths({"d"});
  options_.forget = true;
  EXPECT_EQ(IndexPaths({"d/e"}),
            "index 'my.index' is not kept up to date with 'd/e'; kestan stats shows its roots\n");
  options_.forget = true;
  EXPECT_EQ(IndexAll(), "--forget needs the PATHs to forget\n");
}

TEST_F(IndexRootsTest, VanishedRootsCanBeForgotten) {
  IndexPaths({"d", "x"});
  fs::remove_all("d");
  options_.forget = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 0, 0));
  EXPECT_EQ(status_, kDone);
  EXPECT_EQ(Remembered().count(Path("d")), 0u);
}

TEST_F(IndexRootsTest, VanishedRootIsAnErrorAndLosesNothing) {
  options_.prune = true;
  IndexPaths({"d", "x"});
  fs::rename("d", "away");
  Write("x/z", "dog\n");
  EXPECT_EQ(IndexAll(), Report(1, 0, 0, 0, 1, "1 (1 unreadable)") +
                            "kestan: skipped 'd': no such file or folder; --forget takes it from "
                            "the roots\n");
  EXPECT_EQ(status_, kIncomplete);
  EXPECT_EQ(List(), "d/a.txt\nd/b.log\nd/e/c.txt\nx/y\nx/z\n");
  EXPECT_EQ(IndexPaths({"d"}), "cannot read 'd': no such file or folder\n");
  fs::rename("away", "d");
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 5));
}

TEST_F(IndexRootsTest, FileBelongsToItsInnermostRoot) {
  options_.reading.exclude = {"*.txt"};
  EXPECT_EQ(IndexPaths({"d"}), Report(1, 0, 0, 0, 0, "2 (2 excluded)"));
  options_.reading.exclude = {"*.log"};
  EXPECT_EQ(IndexPaths({"d/e"}), Report(1, 0, 0, 0, 0));
  Write("d/e/new.txt", "dog\n");
  Write("d/e/new.log", "dog\n");
  EXPECT_EQ(IndexPaths({"d"}), Report(1, 0, 0, 0, 2, "2 (2 excluded)"));
  EXPECT_EQ(List(), "d/b.log\nd/e/c.txt\nd/e/new.txt\n");
}

TEST_F(IndexRootsTest, DocumentOfAnInnerRootIsPrunedAsThatSays) {
  options_.prune = true;
  IndexPaths({"d"});
  options_.prune = false;
  options_.reading.exclude = {"z"};
  IndexPaths({"d/e"});
  fs::remove("d/e/c.txt");
  fs::remove("d/a.txt");
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 1, 1));
  EXPECT_EQ(List(), "d/b.log\nd/e/c.txt\n");
}

TEST_F(IndexRootsTest, PathBelowARootIsAPartOfItUnlessItHasOptionsOfItsOwn) {
  options_.reading.exclude = {"e/*.log"};
  options_.prune = true;
  IndexPaths({"d"});
  Write("d/e/new.log", "dog\n");
  Write("d/e/new.txt", "dog\n");
  fs::remove("d/e/c.txt");
  fs::remove("d/a.txt");
  EXPECT_EQ(IndexPaths({"d/e"}), Report(1, 0, 0, 1, 0, "1 (1 excluded)"));
  EXPECT_EQ(List(), "d/a.txt\nd/b.log\nd/e/new.txt\n");
  EXPECT_EQ(Remembered().size(), 1u);
  options_.reset = true;
  EXPECT_EQ(IndexPaths({"d/e"}), Report(1, 0, 0, 0, 1));
  EXPECT_EQ(Remembered().size(), 2u);
}

TEST_F(IndexRootsTest, RootTakesInThoseBelowItThatAreReadAlike) {
  IndexPaths({"d/a.txt"});
  IndexPaths({"d/e"});
  options_.reading.stop_words = "english";
  IndexPaths({"d/b.log"});
  fs::remove("d/a.txt");
  options_.prune = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 1, 2));
  EXPECT_EQ(status_, kDone);
  const Roots roots = Remembered();
  EXPECT_EQ(roots.size(), 2u);
  EXPECT_EQ(roots.at(Path("d/b.log")).reading.stop_words, "english");
}

TEST_F(IndexRootsTest, PathsOfOneRunAreOneRootIfOneHoldsTheOthers) {
  EXPECT_EQ(IndexPaths({"d/e", "d/a.txt", "d"}), Report(3, 0, 0, 0, 0));
  EXPECT_EQ(Remembered().size(), 1u);
}

TEST_F(IndexRootsTest, ListsAreNotRememberedAndUseTheOptionsOfRoots) {
  options_.reading.stop_words = "english";
  IndexPaths({"d"});
  const std::string before = Property();
  Write("d/the", "the dog\n");
  EXPECT_EQ(IndexList("d/the\0x/y"), Report(1, 0, 0, 0, 0)) << "the list ends at the NUL";
  EXPECT_EQ(IndexList(std::string("d/the\0x/y", 9)), Report(1, 0, 0, 0, 1));
  EXPECT_EQ(Property(), before);
  EXPECT_EQ(Search("the"), "");
  options_ = IndexOptions();
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 4));
}

TEST_F(IndexRootsTest, RunThatChangesNothingChangesNoRoot) {
  IndexPaths({"d"});
  const auto before = kestan_tests::FilesOfIndex("my.index");
  IndexPaths({"d"});
  IndexAll();
  EXPECT_EQ(kestan_tests::FilesOfIndex("my.index"), before);
}

TEST_F(IndexRootsTest, PathWithNothingToIndexIsNotRemembered) {
  IndexPaths({"d"});
  const auto before = kestan_tests::FilesOfIndex("my.index");
  fs::create_directory("empty");
  EXPECT_EQ(IndexPaths({"empty"}), "nothing to index: no text files, 0 binary files, 0 links\n");
  EXPECT_EQ(kestan_tests::FilesOfIndex("my.index"), before);
}

TEST_F(IndexRootsTest, FailedRunRemembersNothing) {
  IndexPaths({"d"});
  const std::string before = Property();
  EXPECT_EQ(IndexPaths({"x", "gone"}), "cannot read 'gone': no such file or folder\n");
  EXPECT_EQ(Property(), before);
}

TEST_F(IndexRootsTest, StopWordsAreFoundFromEveryFolder) {
  Write("stop", "dog\n");
  options_.reading.stop_words = "stop";
  IndexPaths({"d"});
  Write("d/new", "dog house\n");
  fs::current_path("x");
  testing::internal::CaptureStdout();
  EXPECT_EQ(RunIndex("../my.index", {}), kDone);
  testing::internal::GetCapturedStdout();
  fs::current_path(Path(""));
  EXPECT_EQ(Search("house"), "100 d/new\n");
  EXPECT_EQ(Search("dog"), "");
}

TEST_F(IndexRootsTest, DamagedMemoryIsAnErrorUntilItIsWrittenAnew) {
  IndexPaths({"d"});
  for (const char* garbage :
       {"garbage", "{}", "[]", "{\"version\":2,\"roots\":[]}", "{\"version\":1,\"roots\":[1]}",
        "{\"version\":1,\"roots\":[{\"path\":\"d\"}]}",
        "{\"version\":1,\"roots\":[{\"path\":\"/d\",\"prune\":1}]}"}) {
    SetProperty(garbage);
    const auto before = kestan_tests::FilesOfIndex("my.index");
    EXPECT_NE(IndexAll().find("what it remembers of its roots is damaged"), std::string::npos);
    EXPECT_NE(IndexPaths({"d"}).find("is damaged"), std::string::npos);
    EXPECT_EQ(kestan_tests::FilesOfIndex("my.index"), before);
  }
  options_.reset = true;
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 0, 0, 0, 3));
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 3));
}

// ---- An index from somebody else ----

class StrangeIndexTest : public IndexRootsTest {
 protected:
  void SetUp() override {
    IndexRootsTest::SetUp();
    Write("tool", "#!/bin/sh\necho run >>" + Path("log") + "\ncat \"$1\"\n");
    ASSERT_EQ(chmod("tool", 0755), 0);
    options_.reading.converters = {"x=./tool {}"};
    Write("d/f.x", "dog\n");
  }

  std::string Log() { return fs::exists("log") ? kestan_tests::BytesOfFile("log") : ""; }
};

TEST_F(StrangeIndexTest, ConvertersThatWereGivenHereAreRunFromEveryFolder) {
  if (FolderIdentity(".").empty()) GTEST_SKIP() << "this file system does not date its folders";
  IndexPaths({"d"});
  Write("d/f.x", "bird\n");
  fs::current_path("x");
  testing::internal::CaptureStdout();
  EXPECT_EQ(RunIndex("../my.index", {}), kDone);
  testing::internal::GetCapturedStdout();
  fs::current_path(Path(""));
  EXPECT_EQ(Log(), "run\nrun\n");
}

TEST_F(StrangeIndexTest, ConvertersOfACopyAreNotRun) {
  IndexPaths({"d"});
  fs::rename("my.index", "elsewhere");
  fs::copy("elsewhere", "my.index", fs::copy_options::recursive);
  Write("d/f.x", "bird\n");
  fs::remove("log");
  const auto before = kestan_tests::FilesOfIndex("my.index");
  for (const std::vector<std::string>& paths :
       {std::vector<std::string>{}, std::vector<std::string>{"d"}}) {
    EXPECT_EQ(IndexPaths(paths),
              "the converters that index 'my.index' remembers for 'd' are not run: they were not "
              "given in this folder, which is a copy; give them again with --converter, or none "
              "with --reset\n");
  }
  EXPECT_EQ(Log(), "");
  EXPECT_EQ(kestan_tests::FilesOfIndex("my.index"), before);
  options_.reading.converters = {"x=./tool {}"};
  EXPECT_EQ(IndexPaths({"d"}), Report(0, 1, 0, 0, 3));
  EXPECT_EQ(Log(), "run\n");
}

TEST_F(StrangeIndexTest, ConvertersOfOtherRootsAreNotTakenForGivenHere) {
  IndexPaths({"d"});
  fs::rename("my.index", "elsewhere");
  fs::copy("elsewhere", "my.index", fs::copy_options::recursive);
  options_.reading.converters = {"y=./tool {}"};
  IndexPaths({"x"});
  Write("d/f.x", "bird\n");
  fs::remove("log");
  EXPECT_NE(IndexAll().find("are not run"), std::string::npos);
  EXPECT_EQ(Log(), "");
}

TEST_F(StrangeIndexTest, PathsAreNotTakenFromAnIndexThatOthersMayWrite) {
  IndexPaths({"d"});
  for (const char* path : {"my.index", "my.index/MANIFEST"}) {
    fs::permissions(path, fs::perms::group_write, fs::perm_options::add);
    EXPECT_EQ(IndexAll(),
              "the PATHs that index 'my.index' remembers are not used: other users may write it; "
              "name them\n");
    fs::permissions(path, fs::perms::group_write, fs::perm_options::remove);
  }
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 4));
}

TEST_F(StrangeIndexTest, ConvertersThatOthersMayHaveWrittenAreNotRun) {
  IndexPaths({"d"});
  fs::permissions("my.index", fs::perms::others_write, fs::perm_options::add);
  Write("d/f.x", "bird\n");
  EXPECT_NE(IndexPaths({"d"}).find("are not run: other users may write it"), std::string::npos);
}

TEST_F(StrangeIndexTest, PathsOfAnotherUserAreNotTaken) {
  if (geteuid() != 0) GTEST_SKIP() << "only a superuser can give files away";
  IndexPaths({"d"});
  ASSERT_EQ(chown("my.index", 65534, 65534), 0);
  EXPECT_NE(IndexAll().find("it belongs to another user"), std::string::npos);
}

TEST_F(StrangeIndexTest, NewFolderIsNotForOthersToWriteWhateverTheUmask) {
  const mode_t mask = umask(0);
  IndexPaths({"d"});
  umask(mask);
  struct stat status {};
  ASSERT_EQ(stat("my.index", &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0755u);
  EXPECT_EQ(IndexAll(), Report(0, 0, 0, 0, 4));
}

}  // namespace
}  // namespace kestan_cli
