#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class MaintenanceCommandsTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat dog\n");
    Add("b", "cat\n");
  }

  // Counts the files whose names begin with `start`.
  int NamesLike(const std::string& start) const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Path(""))) {
      if (entry.path().filename().string().rfind(start, 0) == 0) ++count;
    }
    return count;
  }

  // Runs a command whose standard input has `start` and then one byte after the other, without end.
  //   Returns  how many bytes it took before it ended; at most `most`.
  std::size_t FeedEndlessly(const std::vector<std::string>& arguments, const std::string& start,
                            std::size_t most, Outcome* outcome) {
    std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const TempDir streams;
    const pid_t child = Start(arguments, streams, [&] { dup2(ends[0], STDIN_FILENO); });
    close(ends[0]);
    std::size_t bytes = 0;
    std::string piece = start;
    for (ssize_t written = 0; written >= 0 && bytes < most;) {
      written = write(ends[1], piece.data(), piece.size());
      if (written > 0) bytes += static_cast<std::size_t>(written);
      piece.assign(65536, 'x');
    }
    close(ends[1]);
    int status = 0;
    waitpid(child, &status, 0);
    *outcome = {WEXITSTATUS(status), BytesOfFile(streams / "out"), BytesOfFile(streams / "err")};
    return bytes;
  }
};

constexpr std::size_t kMiB = std::size_t{1} << 20;

TEST_F(MaintenanceCommandsTest, CheckFindsNothingWrongWithAGoodIndex) {
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
  EXPECT_EQ(Run({"check", "my.index", "--json"}),
            Success("{\"schema\":1,\"faults\":0,\"notes\":0,\"lines\":[]}\n"));
}

TEST_F(MaintenanceCommandsTest, CheckNamesEachFaultAndEndsWithStatusOne) {
  Plant(Path("my.index"), {{"g-code", Units({1})}});
  EXPECT_EQ(
      Run({"check", "my.index"}),
      (Outcome{1, "g-code: the counter 1 is below code 2, which is in use\n1 fault, 0 notes\n",
               ""}));
  EXPECT_EQ(Run({"check", "-q", "my.index"}), (Outcome{1, "", ""}));
}

TEST_F(MaintenanceCommandsTest, RepairSavesWhatADamagedIndexHolds) {
  std::string bytes = IndexBytes();
  bytes.replace(0, 400, 400, '\xff');  // the header
  Write("damaged.index", bytes);
  EXPECT_EQ(Run({"list", "damaged.index"}).status, 2);
  const Outcome outcome = Run({"repair", "damaged.index", "new.index"});
  EXPECT_EQ(outcome.status, 0) << outcome;
  EXPECT_NE(outcome.out.find("saved 2 documents, 0 with words missing, 0 half-written, 0 lost\n"),
            std::string::npos)
      << outcome;
  EXPECT_EQ(Run({"search", "new.index", "dog"}), Success("100 a\n"));
  EXPECT_EQ(Run({"check", "new.index"}).status, 0);
  EXPECT_EQ(BytesOfFile(Path("damaged.index")), bytes);
}

TEST_F(MaintenanceCommandsTest, RepairDoesNotOverwrite) {
  EXPECT_EQ(Run({"repair", "my.index", "my.index"}),
            Failure("cannot make 'my.index': there is something already; choose another name"));
}

TEST_F(MaintenanceCommandsTest, RepairNamesWhatItCannotReadOrMake) {
  Write("noise", std::string(5000, 'x'));
  EXPECT_EQ(Run({"repair", "missing", "new.index"}),
            Failure("cannot open index 'missing': no such file; kestan index makes one"));
  EXPECT_EQ(Run({"repair", ".", "new.index"}), Failure("cannot open index '.': is a folder"));
  EXPECT_EQ(Run({"repair", "noise", "new.index"}),
            Failure("cannot repair 'noise': no record was found"));
  const Outcome full = Run({"repair", "my.index", "new.index"}, FileSizeLimit(1000));
  EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
}

TEST_F(MaintenanceCommandsTest, CopyAndLoadToAFullDiskNameTheNewFile) {
  Write("my.dump", Run({"dump", "my.index"}).out);
  const auto full_disk = [limit = FileSizeLimit(1000)] {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // gdbm loses 512 bytes when it cannot make a file
    limit();
  };
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"copy", "my.index", "new.index"},
        std::vector<std::string>{"load", "new.index", "my.dump"}}) {
    const Outcome full = Run(command, full_disk);
    EXPECT_EQ(full.status, 2);
    EXPECT_EQ(full.err.substr(0, 33), "kestan: cannot make 'new.index': ") << full;
    EXPECT_EQ(full.err.find('\n'), full.err.size() - 1) << full;
    EXPECT_FALSE(std::filesystem::exists(Path("new.index")));
  }
}

TEST_F(MaintenanceCommandsTest, FolderWithoutLeaveToWriteTakesNoCopy) {
  OpenFolderToAll(0555);
  EXPECT_EQ(Run({"copy", "my.index", "new"}, GiveUpPrivileges),
            Failure("cannot make 'new': cannot make a folder beside it: permission denied"));
}

TEST_F(MaintenanceCommandsTest, LoadOfAFolderIsTold) {
  EXPECT_EQ(Run({"load", "new.index", "."}), Failure("cannot read '.': is a folder"));
}

TEST_F(MaintenanceCommandsTest, RepairOfNothingLeavesNothing) {
  Write("noise", std::string(5000, 'x'));
  for (const char* damaged : {"noise", "missing", "."}) {
    const Outcome outcome = Run({"repair", damaged, "new.index"});
    EXPECT_EQ(outcome.status, 2) << outcome;
    EXPECT_EQ(NamesLike("new.index"), 0);
  }
}

TEST_F(MaintenanceCommandsTest, DumpAndLoadKeepEveryRecord) {
  const Outcome dump = Run({"dump", "my.index"});
  ASSERT_EQ(dump.status, 0) << dump;
  EXPECT_EQ(dump.out.substr(0, 13), "kestan-dump 1");
  Write("my.dump", dump.out);
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}), Success(""));
  EXPECT_EQ(Dump(Path("new.index")), Dump(Path("my.index")));
}

TEST_F(MaintenanceCommandsTest, LoadReadsTheStandardInput) {
  Write("my.dump", Run({"dump", "my.index"}).out);
  const auto from_file = [this] {
    dup2(open(Path("my.dump").c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  };
  EXPECT_EQ(Run({"load", "new.index"}, from_file), Success(""));
  EXPECT_EQ(Run({"load", "other.index", "-"}, from_file), Success(""));
  EXPECT_EQ(Dump(Path("other.index")), Dump(Path("my.index")));
}

TEST_F(MaintenanceCommandsTest, DumpThatWasCutMakesNoIndex) {
  const std::string dump = Run({"dump", "my.index"}).out;
  Write("cut.dump", dump.substr(0, dump.size() / 2));
  const Outcome outcome = Run({"load", "new.index", "cut.dump"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err.rfind("kestan: cannot load 'cut.dump': line ", 0), 0u) << outcome;
  EXPECT_EQ(NamesLike("new.index"), 0);
}

TEST_F(MaintenanceCommandsTest, LineWithoutEndIsNotReadToItsEnd) {
  Outcome outcome;
  EXPECT_LT(FeedEndlessly({"load", "new.index"}, "kestan-dump 1\n", 64 * kMiB, &outcome), 4 * kMiB);
  EXPECT_EQ(outcome,
            Failure("cannot load 'standard input': line 2: longer than any line of a dump"));
  EXPECT_EQ(NamesLike("new.index"), 0);
}

TEST_F(MaintenanceCommandsTest, LineOfADumpMayBeAsLongAsTheFormatAllows) {
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

TEST_F(MaintenanceCommandsTest, LinesOfADumpMayBeEmptyOrHoldNuls) {
  Write("my.dump", "kestan-dump 1\n\n");
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}),
            Failure("cannot load 'my.dump': line 2: neither a record nor the last line"));
  Write("my.dump", std::string("kestan-dump 1\na\0\tb\n", 19));
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}),
            Failure("cannot load 'my.dump': line 2: a byte that should have been escaped"));
}

TEST_F(MaintenanceCommandsTest, WordsWithoutEndAreNotReadToTheirEnd) {
  Outcome outcome;
  EXPECT_LT(FeedEndlessly({"wordlist", "put", "my.index", "l"}, "", 100 * kMiB, &outcome),
            66 * kMiB);
  EXPECT_EQ(outcome, Failure("the standard input holds more than 67108864 bytes"));
}

TEST_F(MaintenanceCommandsTest, LoadOfAMissingFileIsTold) {
  EXPECT_EQ(Run({"load", "new.index", "nowhere"}),
            Failure("cannot read 'nowhere': no such file or folder"));
}

TEST_F(MaintenanceCommandsTest, LoadDoesNotOverwrite) {
  Write("my.dump", Run({"dump", "my.index"}).out);
  EXPECT_EQ(Run({"load", "my.index", "my.dump"}),
            Failure("cannot make 'my.index': there is something already; choose another name"));
}

TEST_F(MaintenanceCommandsTest, CopyHoldsEveryRecord) {
  EXPECT_EQ(Run({"copy", "my.index", "new.index"}), Success(""));
  EXPECT_EQ(Dump(Path("new.index")), Dump(Path("my.index")));
  EXPECT_EQ(Run({"copy", "my.index", "new.index"}),
            Failure("cannot make 'new.index': there is something already; choose another name"));
}

TEST_F(MaintenanceCommandsTest, ExportPrintsEitherForm) {
  EXPECT_EQ(Run({"export", "my.index", "json"}).out.rfind("{\"index\":{\"_index\":\"kestan\"", 0),
            0u);
  EXPECT_NE(Run({"export", "my.index", "sql", "texts"}).out.find("tsvector"), std::string::npos);
  EXPECT_EQ(Run({"export", "my.index", "xml"}), Failure("no form 'xml'; there are json and sql"));
}

}  // namespace
}  // namespace kestan_tests
