// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "tests/cli/commands/upkeep/upkeep_test.h"

namespace kestan_tests {
namespace {

class CompactCommandTest : public UpkeepTest {
 protected:
  std::string Bytes(const std::string& index) const {
    return std::to_string(kestan::search::IndexReader::Open(Path(index))->Statistics().bytes);
  }
};

TEST_F(CompactCommandTest, ReportsTheSizes) {
  RemoveDocument("b");
  AddDocument("c", "cow");
  const std::string before = Bytes("my.index");
  const Outcome outcome = Run({"compact", "my.index"});
  EXPECT_EQ(outcome, Success("compacted from " + before + " to " + Bytes("my.index") +
                             " bytes, from 2 segments to 1\n"));
  EXPECT_EQ(CountDocuments("my.index"), 2u);
  EXPECT_EQ(CountMatches("my.index", "dog OR cow"), 2u);
  EXPECT_EQ(Run({"check", "my.index"}), Success("0 faults, 0 notes\n"));
}

TEST_F(CompactCommandTest, ShrinkIsItsOldName) {
  const std::string before = Bytes("my.index");
  const Outcome outcome = Run({"shrink", "my.index", "--json"});
  EXPECT_EQ(outcome, Success("{\"schema\":1,\"dry_run\":false,\"bytes_before\":" + before +
                             ",\"bytes_after\":" + Bytes("my.index") +
                             ",\"segments_before\":2,\"segments_after\":1}\n"));
  EXPECT_EQ(Run({"compact", "-q", "my.index"}), Success(""));
}

TEST_F(CompactCommandTest, DryRunReportsTheSizesAndChangesNothing) {
  const Files before = FilesIn("my.index");
  const Outcome dry = Run({"compact", "-n", "my.index"});
  EXPECT_EQ(FilesIn("my.index"), before);
  const Outcome compacted = Run({"compact", "my.index"});
  EXPECT_EQ(dry, Success("would compact" + compacted.out.substr(9)));
}

TEST_F(CompactCommandTest, FollowsALinkToTheIndex) {
  std::filesystem::create_symlink("my.index", Path("link"));
  EXPECT_EQ(Run({"compact", "-q", "link"}), Success(""));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(CountDocuments("my.index"), 2u);
}

TEST_F(CompactCommandTest, WritesOneFile) {
  const Outcome outcome = Run({"compact", "--one-file", "small.index", "my.index"});
  EXPECT_EQ(outcome, Success("wrote 2 documents in " + Bytes("small.index") + " bytes\n"));
  EXPECT_EQ(CountMatches("small.index", "cat"), 2u);
  EXPECT_EQ(Run({"compact", "--one-file", "small.index", "my.index"}),
            Failure("cannot make 'small.index': there is something already; choose another name"));
  EXPECT_EQ(Run({"compact", "--one-file", "nowhere/small.index", "my.index"}),
            Failure("cannot make 'nowhere/small.index': no such folder"));
  EXPECT_EQ(Run({"compact", "-n", "--one-file", "other.index", "my.index"}),
            Failure("--dry-run and --one-file exclude each other"));
}

TEST_F(CompactCommandTest, IndexOfOneFileIsOnlyRead) {
  const std::string before = BytesOfFile(Path("one.index"));
  const Outcome outcome = Run({"compact", "one.index"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("kestan convert"), std::string::npos) << outcome;
  EXPECT_EQ(BytesOfFile(Path("one.index")), before);
  EXPECT_EQ(Run({"compact", "nowhere"}),
            Failure("cannot open index 'nowhere': no such file or folder; kestan index makes one"));
}

TEST_F(CompactCommandTest, DamagedIndexStaysAsItIs) {
  Damage("my.index/1.segment");
  const Files before = FilesIn("my.index");
  for (const char* option : {"-n", "-q"}) {
    EXPECT_EQ(Run({"compact", option, "my.index"}),
              Failure("index 'my.index': its bytes have changed since it was written (1.segment); "
                      "see kestan check and kestan repair"));
  }
  EXPECT_EQ(FilesIn("my.index"), before);
}

TEST_F(CompactCommandTest, SignalLeavesTheIndexAsItWasOrCompacted) {
  for (int segment = 0; segment < 4; ++segment) {
    auto writer = kestan::search::IndexWriter::Open(Path("my.index"));
    for (int i = 0; i < 1000; ++i) {
      const std::string number = std::to_string(segment * 1000 + i);
      kestan::search::Document document;
      document.name = "n" + number;
      for (int j = 0; j < 30; ++j) document.words += " w" + std::to_string(j) + "x" + number;
      ASSERT_TRUE(writer->Add(document).ok());
    }
    ASSERT_TRUE(writer->Commit().ok());
  }
  Run({"copy", "my.index", "original"});
  const Files before = FilesIn("original");
  int interrupted = 0;
  for (const int milliseconds : {1, 5, 10, 20, 40, 80, 160}) {
    std::filesystem::remove_all(Path("my.index"));
    std::filesystem::copy(Path("original"), Path("my.index"));
    const TempDir streams;
    const pid_t child = Start({"compact", "my.index"}, streams);
    usleep(static_cast<useconds_t>(milliseconds) * 1000);
    kill(child, SIGTERM);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    Files after = FilesIn("my.index");
    after.erase("writer.lock");
    if (WIFSIGNALED(status)) {
      EXPECT_EQ(WTERMSIG(status), SIGTERM);
      ++interrupted;
    } else {
      EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    // The signal may come after the last moment at which it is looked for.
    const auto reader = kestan::search::IndexReader::Open(Path("my.index"));
    const bool is_compacted = reader.ok() && reader->Statistics().segments == 1;
    EXPECT_TRUE(after == before || (is_compacted && after.size() == 4)) << milliseconds;
    EXPECT_TRUE(is_compacted || WIFSIGNALED(status));
    EXPECT_EQ(CountDocuments("my.index"), 4002u);
    EXPECT_EQ(Run({"check", "-q", "my.index"}).status, 0);
  }
  EXPECT_GT(interrupted, 0);
}

}  // namespace
}  // namespace kestan_tests
