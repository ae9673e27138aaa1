// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/opened_writer.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "cli/console/message.h"
#include "tests/cli/index_folder_test.h"
#include "tests/cli/traced_command.h"

namespace kestan_cli {
namespace {

using kestan::search::Document;
using kestan::search::IndexWriter;
using kestan_tests::IndexFolderTest;
using IfMissing = OpenedWriter::IfMissing;
using Change = std::function<void(OpenedWriter& opened)>;
using Names = std::vector<std::string>;

class OpenedWriterTest : public IndexFolderTest {
 protected:
  static Document Named(const std::string& name) {
    Document document;
    document.name = name;
    for (int i = 0; i < 200; ++i) document.words += " word" + std::to_string(i) + name;
    return document;
  }

  // Returns why `name` cannot be opened; "" if it can.
  std::string Refusal(const std::string& name, IfMissing if_missing, int* status = nullptr) const {
    try {
      const OpenedWriter opened(Path(name), if_missing, ProgressStyle::kNone);
    } catch (const CommandError& error) {
      if (status != nullptr) *status = error.status();
      return error.what();
    }
    return "";
  }

  std::string IndexNamed(const std::string& name) const { return "'" + Path(name) + "'"; }
};

TEST_F(OpenedWriterTest, ChangesAreThereAfterACommit) {
  AddDocument("a");
  OpenedWriter opened(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
  opened.Check(opened.writer().Add(Named("b")));
  EXPECT_EQ(opened.Read().Statistics().documents, 1u);
  opened.Commit();
  EXPECT_EQ(opened.Read().Statistics().documents, 2u);
  EXPECT_EQ(StoredNames(), (Names{"a", "b"}));
}

TEST_F(OpenedWriterTest, MakesAnIndexOnlyWhereItMay) {
  EXPECT_EQ(Refusal("my.index", IfMissing::kFail),
            "cannot open index " + IndexNamed("my.index") +
                ": no such file or folder; kestan index makes one");
  EXPECT_FALSE(std::filesystem::exists(Path("my.index")));
  EXPECT_EQ(Refusal("my.index", IfMissing::kCreate), "");
  EXPECT_EQ(StoredNames(), Names{});
}

TEST_F(OpenedWriterTest, IndexOfOneFileIsRefused) {
  MakeOneFileIndex();
  for (const IfMissing if_missing : {IfMissing::kFail, IfMissing::kCreate}) {
    EXPECT_NE(Refusal("one.index", if_missing).find("kestan convert FILE FOLDER"),
              std::string::npos);
  }
}

TEST_F(OpenedWriterTest, FolderThatIsNoIndexIsLeftAlone) {
  Write("folder/file", "x");
  for (const IfMissing if_missing : {IfMissing::kFail, IfMissing::kCreate}) {
    EXPECT_NE(Refusal("folder", if_missing), "");
  }
  EXPECT_FALSE(std::filesystem::exists(Path("folder/MANIFEST")));
}

TEST_F(OpenedWriterTest, SecondWriterIsTurnedAwayForNow) {
  AddDocument("a");
  const OpenedWriter first(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
  int status = 0;
  const std::string refusal = Refusal("my.index", IfMissing::kFail, &status);
  EXPECT_NE(refusal.find(std::to_string(getpid())), std::string::npos) << refusal;
  EXPECT_NE(refusal.find("; try again later"), std::string::npos) << refusal;
  EXPECT_EQ(status, kBusy);
}

TEST_F(OpenedWriterTest, ErrorsOfTheWriterAreThrown) {
  AddDocument("a");
  OpenedWriter opened(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
  EXPECT_THROW(opened.Check(opened.writer().Remove("b")), CommandError);
  EXPECT_NO_THROW(opened.Check(opened.writer().Remove("a")));
}

TEST_F(OpenedWriterTest, CompactMergesAndDropsWhatIsAskedFor) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  OpenedWriter opened(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
  ASSERT_EQ(opened.Read().Statistics().segments, 3u);
  opened.Compact();
  EXPECT_EQ(opened.Read().Statistics().segments, 1u);
  opened.DropPositions();
  EXPECT_FALSE(opened.Read().Statistics().with_positions);
}

TEST_F(OpenedWriterTest, DamagedSegmentIsReportedWhenItIsLeftOutOfMerging) {
  AddDocument("large", Named("large").words);  // files of the same size are compared when opened
  for (int i = 0; i < 6; ++i) AddDocument("d" + std::to_string(i));
  std::string bytes = kestan_tests::BytesOfFile(Path("my.index/1.segment"));
  bytes.at(bytes.find("The title")) = 'X';  // a change that the checksum alone shows
  Write("my.index/1.segment", bytes);
  OpenedWriter opened(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
  opened.Check(opened.writer().Add(Named("z")));
  const std::string said = kestan_tests::StandardErrorOf([&] { opened.Commit(); });
  EXPECT_EQ(said.find("kestan: index " + IndexNamed("my.index") + ": "), 0u) << said;
  EXPECT_NE(said.find("(1.segment); see kestan check and kestan repair\n"), std::string::npos)
      << said;
  EXPECT_EQ(opened.Read().Statistics().documents, 8u);
}

// ---- Signals ----

// The calls that change files or folders, and the end.
const std::set<unsigned long long>& ChangingCalls() {
  static const std::set<unsigned long long> calls{
      SYS_write,       SYS_pwrite64, SYS_writev,   SYS_ftruncate, SYS_fsync,     SYS_fdatasync,
      SYS_openat,      SYS_unlinkat, SYS_renameat, SYS_unlink,    SYS_renameat2, SYS_rename,
#ifdef SYS_ftruncate64
      SYS_ftruncate64,
#endif
  };
  return calls;
}

class InterruptedWriterTest : public OpenedWriterTest {
 protected:
  void SetUp() override {
    for (const char* name : {"a", "b", "c"}) AddDocument(name, std::string("cat ") + name);
    std::filesystem::copy(Path("my.index"), Path("old.index"));
  }

  // Starts a traced process that makes `change`, and ends as main() does. It waits to be started.
  pid_t StartTraced(const Change& change) const {
    const pid_t child = fork();
    if (child != 0) return child;
    kestan_tests::BeTraced();
    std::raise(SIGSTOP);
    try {
      OpenedWriter opened(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
      change(opened);
    } catch (const Interrupted& interrupted) {
      std::signal(interrupted.signal(), SIG_DFL);
      std::raise(interrupted.signal());
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
      _exit(1);
    }
    _exit(0);
  }

  // Lets SIGINT come while `change` makes its `nth` changing call, counted from 1.
  //   Returns  the status of the process at its end; nothing if it makes fewer such calls.
  std::optional<int> Interrupt(const Change& change, int nth) {
    std::filesystem::remove_all(Path("my.index"));
    std::filesystem::copy(Path("old.index"), Path("my.index"));
    const pid_t child = StartTraced(change);
    int calls = 0;
    const auto is_nth = [&](const kestan_tests::Call& call) {
      return ChangingCalls().count(call.number) != 0 && ++calls == nth;
    };
    if (!kestan_tests::StopBefore(child, is_nth)) return std::nullopt;
    kill(child, SIGINT);
    ptrace(PTRACE_DETACH, child, 0, 0);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
  }

  // Returns the names of files that MANIFEST does not name, but for itself and the lock.
  std::uint64_t Leftovers() const { return kestan::search::CheckIndex(Path("my.index"))->notes; }

  // What of an index a change changes.
  struct State {
    Names names;
    bool with_positions;
    std::uint64_t segments;

    bool operator==(const State& other) const {
      return names == other.names && with_positions == other.with_positions &&
             segments == other.segments;
    }
  };

  State Now() const {
    const auto statistics = Read().Statistics();
    return {StoredNames(), statistics.with_positions, statistics.segments};
  }

  // Interrupts `change` at each of its calls: afterwards the index is as it was or as it should be.
  void InterruptEverywhere(const Change& change) {
    const State old = Now();
    int before = 0;
    int after = 0;
    for (int nth = 1;; ++nth) {
      const auto status = Interrupt(change, nth);
      if (!status) break;
      const State now = Now();
      ++(now == old ? before : after);
      EXPECT_TRUE(WIFSIGNALED(*status) && WTERMSIG(*status) == SIGINT)
          << "call " << nth << ", status " << *status;
      EXPECT_EQ(kestan::search::CheckIndex(Path("my.index"))->faults, 0u) << "call " << nth;
      EXPECT_EQ(Leftovers(), 0u) << "call " << nth;
      if (now == old) continue;
      if (after == 1) made_ = now;
      EXPECT_TRUE(now == made_) << "call " << nth;
    }
    EXPECT_GT(before, 3);
    std::printf("interrupted %d times: %d before the change, %d after\n", before + after, before,
                after);
  }

  State made_{};
};

TEST_F(InterruptedWriterTest, CommitLeavesTheIndexAsItWasOrAsItShouldBe) {
  InterruptEverywhere([](OpenedWriter& opened) {
    for (int i = 0; i < 20; ++i) opened.Check(opened.writer().Add(Named("n" + std::to_string(i))));
    opened.Check(opened.writer().Remove("a"));
    opened.Commit();
    Interruption::Check();
  });
  EXPECT_EQ(made_.names.size(), 22u);
}

TEST_F(InterruptedWriterTest, CompactionLeavesTheIndexAsItWasOrAsItShouldBe) {
  InterruptEverywhere([](OpenedWriter& opened) { opened.Compact(); });
  EXPECT_EQ(made_.segments, 1u);
}

TEST_F(InterruptedWriterTest, DroppingPositionsLeavesTheIndexAsItWasOrAsItShouldBe) {
  InterruptEverywhere([](OpenedWriter& opened) { opened.DropPositions(); });
  EXPECT_FALSE(made_.with_positions);
}

TEST_F(InterruptedWriterTest, SignalBeforeACommitIsSeenBeforeAnythingIsWritten) {
  const auto before = FolderBytes();
  {
    OpenedWriter opened(Path("my.index"), IfMissing::kFail, ProgressStyle::kNone);
    opened.Check(opened.writer().Remove("a"));
    std::raise(SIGTERM);
    EXPECT_THROW(opened.Commit(), Interrupted);
  }
  EXPECT_EQ(FolderBytes(), before);
}

}  // namespace
}  // namespace kestan_cli
