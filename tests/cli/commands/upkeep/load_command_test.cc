// SPDX-License-Identifier: GPL-3.0-or-later
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/cli/endless_input.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

// Runs in the child before the command.
void SmallDisk() {
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // gdbm loses 512 bytes when it cannot make a file
  FileSizeLimit(1000)();
}

class LoadCommandTest : public EndlessInputTest {
 protected:
  void SetUp() override {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    engine.AddDocumentWords("a", "cat dog");
    engine.AddDocumentWords("b", "cat");
    engine.CloseIndex();
  }
};

TEST_F(LoadCommandTest, ReadsTheStandardInput) {
  Write("my.dump", Run({"dump", "my.index"}).out);
  const auto from_file = [this] {
    dup2(open(Path("my.dump").c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  };
  EXPECT_EQ(Run({"load", "new.index"}, from_file), Success(""));
  EXPECT_EQ(Run({"load", "other.index", "-"}, from_file), Success(""));
  EXPECT_EQ(Dump(Path("other.index")), Dump(Path("my.index")));
}

TEST_F(LoadCommandTest, DumpOfAFolderBecomesAFolder) {
  ASSERT_EQ(Run({"convert", "-q", "my.index", "folder"}).status, 0);
  Write("my.dump", Run({"dump", "folder"}).out);
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}), Success(""));
  EXPECT_TRUE(std::filesystem::is_directory(Path("new.index")));
  EXPECT_EQ(Run({"dump", "new.index"}).out, BytesOfFile(Path("my.dump")));
  const std::string dump = BytesOfFile(Path("my.dump"));
  Write("cut.dump", dump.substr(0, dump.size() / 2));
  const Outcome outcome = Run({"load", "other.index", "cut.dump"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err.rfind("kestan: cannot load 'cut.dump': line ", 0), 0u) << outcome;
  const Outcome full = Run({"load", "other.index", "my.dump"}, SmallDisk);
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.err.substr(0, 35), "kestan: cannot make 'other.index': ") << full;
  EXPECT_EQ(CountFiles("other.index"), 0);
}

TEST_F(LoadCommandTest, DoesNotOverwrite) {
  Write("my.dump", Run({"dump", "my.index"}).out);
  EXPECT_EQ(Run({"load", "my.index", "my.dump"}),
            Failure("cannot make 'my.index': there is something already; choose another name"));
}

TEST_F(LoadCommandTest, MissingFileIsAnError) {
  EXPECT_EQ(Run({"load", "new.index", "nowhere"}),
            Failure("cannot read 'nowhere': no such file or folder"));
}

TEST_F(LoadCommandTest, FolderIsAnError) {
  EXPECT_EQ(Run({"load", "new.index", "."}), Failure("cannot read '.': is a folder"));
}

TEST_F(LoadCommandTest, FullDiskIsAnErrorAboutTheNewFile) {
  Write("my.dump", Run({"dump", "my.index"}).out);
  const Outcome full = Run({"load", "new.index", "my.dump"}, SmallDisk);
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
  EXPECT_EQ(full.err.find('\n'), full.err.size() - 1) << full;
  EXPECT_FALSE(std::filesystem::exists(Path("new.index")));
}

TEST_F(LoadCommandTest, TruncatedDumpMakesNoIndex) {
  const std::string dump = Run({"dump", "my.index"}).out;
  Write("cut.dump", dump.substr(0, dump.size() / 2));
  const Outcome outcome = Run({"load", "new.index", "cut.dump"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err.rfind("kestan: cannot load 'cut.dump': line ", 0), 0u) << outcome;
  EXPECT_EQ(CountFiles("new.index"), 0);
}

TEST_F(LoadCommandTest, EndlessLineIsNotReadToItsEnd) {
  Outcome outcome;
  EXPECT_LT(FeedEndlessly({"load", "new.index"}, "kestan-dump 1\n", 64 * kMiB, &outcome), 4 * kMiB);
  EXPECT_EQ(outcome,
            Failure("cannot load 'standard input': line 2: longer than any line of a dump"));
  EXPECT_EQ(CountFiles("new.index"), 0);
}

TEST_F(LoadCommandTest, LineMayBeAsLongAsTheFormatAllows) {
  const std::string longest(kMiB, 'x');
  for (const std::string end : {"\n", ""}) {
    Write("my.dump", "kestan-dump 1\n" + longest + end);
    EXPECT_EQ(Run({"load", "new.index", "my.dump"}),
              Failure("cannot load 'my.dump': line 2: neither a record nor the last line"));
    Write("my.dump", "kestan-dump 1\n" + longest + "x" + end);
    EXPECT_EQ(Run({"load", "new.index", "my.dump"}),
              Failure("cannot load 'my.dump': line 2: longer than any line of a dump"));
  }
}

TEST_F(LoadCommandTest, EmptyLinesAndNulsAreErrors) {
  Write("my.dump", "kestan-dump 1\n\n");
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}),
            Failure("cannot load 'my.dump': line 2: neither a record nor the last line"));
  Write("my.dump", std::string("kestan-dump 1\na\0\tb\n", 19));
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}),
            Failure("cannot load 'my.dump': line 2: a byte that should have been escaped"));
}

}  // namespace
}  // namespace kestan_tests
