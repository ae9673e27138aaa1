#include "cli/index/opened_index.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <string>
#include <vector>

#include "cli/console/message.h"
#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using Arguments = std::vector<std::string>;

class OpenedIndexTest : public CommandTest {
 protected:
  void SetUp() override { Write("docs/a", "some words\n"); }

  // Every subcommand, at work on the index `index`.
  static std::vector<Arguments> EveryCommand(const std::string& index) {
    std::vector<Arguments> commands = ReadingCommands(index);
    for (const Arguments& command : ChangingCommands(index)) commands.push_back(command);
    return commands;
  }

  static std::vector<Arguments> ReadingCommands(const std::string& index) {
    return {{"search", index, "cat"}, {"list", index}, {"stats", index}};
  }

  static std::vector<Arguments> ChangingCommands(const std::string& index) {
    return {{"remove", index, "docs/a"}, {"shrink", index}, {"index", index, "docs"}};
  }

  // Runs `commands`, which must all give `reason` for not opening `index`.
  void ExpectRefusal(
      const std::vector<Arguments>& commands, const std::string& index, const std::string& reason,
      const InChild& prepare = [] {}, int status = 2) {
    const std::string line = "kestan: cannot open index '" + index + "': " + reason + "\n";
    for (const Arguments& command : commands) {
      EXPECT_EQ(Run(command, prepare), (Outcome{status, "", line})) << command.front();
    }
  }

  // The same, and the file at `index` must keep its bytes.
  void ExpectRefusalOfFile(
      const std::vector<Arguments>& commands, const std::string& index, const std::string& reason,
      const InChild& prepare = [] {}) {
    const std::string before = BytesOfFile(Path(index));
    ExpectRefusal(commands, index, reason, prepare);
    EXPECT_EQ(BytesOfFile(Path(index)), before);
  }
};

TEST_F(OpenedIndexTest, MissingIndexIsOnlyMadeByIndexing) {
  ExpectRefusal({{"search", "new", "cat"},
                 {"list", "new"},
                 {"stats", "new"},
                 {"remove", "new", "a"},
                 {"shrink", "new"}},
                "new", "no such file; kestan index makes one");
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
  EXPECT_EQ(Run({"index", "new", "docs"}).status, 0);
}

TEST_F(OpenedIndexTest, NewIndexNeedsAFolder) {
  ExpectRefusal({{"index", "nowhere/new", "docs"}}, "nowhere/new", "no such folder");
  ExpectRefusal({{"index", "", "docs"}}, "", "no such folder");
}

TEST_F(OpenedIndexTest, FolderIsNoIndex) {
  ExpectRefusal(EveryCommand("docs"), "docs", "is a folder");
}

TEST_F(OpenedIndexTest, DeviceIsNoIndex) {
  ExpectRefusal(EveryCommand("/dev/null"), "/dev/null", "not an index file");
}

TEST_F(OpenedIndexTest, PipeIsNotWaitedFor) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0644), 0);
  ExpectRefusal(EveryCommand("pipe"), "pipe", "not an index file");
}

TEST_F(OpenedIndexTest, ShortTextIsNoIndex) {
  Write("note", "buy milk\n");
  ExpectRefusalOfFile(
      EveryCommand("note"), "note",
      "not an index file (Unexpected end of file); if it was one, see kestan repair");
}

TEST_F(OpenedIndexTest, LongTextIsNoIndex) {
  Write("book", std::string(100000, 'x'));
  ExpectRefusalOfFile(EveryCommand("book"), "book",
                      "not an index file (Bad magic number); if it was one, see kestan repair");
}

TEST_F(OpenedIndexTest, EmptyFileIsAnIndexForIndexingOnly) {
  Write("empty", "");
  std::vector<Arguments> commands = ReadingCommands("empty");
  commands.push_back({"remove", "empty", "a"});
  commands.push_back({"shrink", "empty"});
  ExpectRefusalOfFile(commands, "empty",
                      "not an index file (Empty database); if it was one, see kestan repair");
  EXPECT_EQ(Run({"index", "empty", "docs"}).status, 0);
  EXPECT_EQ(Run({"list", "empty"}), Success("docs/a\n"));
}

TEST_F(OpenedIndexTest, EmptyFileStaysEmptyWhenThereIsNothingToIndex) {
  Write("empty", "");
  EXPECT_EQ(Run({"index", "empty", "nowhere"}).status, 2);
  EXPECT_EQ(BytesOfFile(Path("empty")), "");
}

TEST_F(OpenedIndexTest, FileOfAnotherProgramIsNoIndex) {
  Plant(Path("other"), {{"key", "value"}});
  ExpectRefusalOfFile(EveryCommand("other"), "other",
                      "not an index file; if it was one, see kestan repair");
}

TEST_F(OpenedIndexTest, TruncatedIndexIsNoIndex) {
  Add("docs/a", "some words\n");
  Write("part", IndexBytes().substr(0, IndexBytes().size() / 2));
  ExpectRefusalOfFile(
      EveryCommand("part"), "part",
      "not an index file (Malformed database file header); if it was one, see kestan repair");
}

TEST_F(OpenedIndexTest, IndexThatAnotherProcessWritesIsLocked) {
  Add("docs/a", "some words\n");
  Database holder;
  ASSERT_EQ(holder.Open(Path("my.index").c_str(), 1), 0);
  const std::string before = IndexBytes();
  ExpectRefusal(
      EveryCommand("my.index"), "my.index", "another process is changing it; try again later",
      [] {}, 75);
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(OpenedIndexTest, IndexThatAnotherProcessReadsIsNotChangedInPlace) {
  Add("docs/a", "some words\n");
  const std::string before = IndexBytes();
  Database holder;
  ASSERT_EQ(holder.Open(Path("my.index").c_str(), 0), 0);
  EXPECT_EQ(
      Run({"shrink", "my.index", "--in-place"}),
      (Outcome{75, "",
               "kestan: changing index 'my.index' in place: it can be damaged if this is "
               "ended early\nkestan: cannot open index 'my.index': another process has it open; "
               "try again later\n"}));
  EXPECT_EQ(IndexBytes(), before);
  EXPECT_EQ(Run({"list", "my.index"}), Success("docs/a\n"));
}

TEST_F(OpenedIndexTest, IndexWithoutLeaveToReadIsRefused) {
  Add("docs/a", "some words\n");
  OpenFolderToAll(0755);
  ASSERT_EQ(chmod(Path("my.index").c_str(), 0), 0);
  ExpectRefusal(EveryCommand("my.index"), "my.index", "permission denied", GiveUpPrivileges);
}

TEST_F(OpenedIndexTest, IndexWithoutLeaveToWriteCanBeReadOnly) {
  Add("docs/a", "some words\n");
  Write("docs/b", "to add\n");
  OpenFolderToAll(0755);
  ASSERT_EQ(chmod(Path("my.index").c_str(), 0444), 0);
  const std::string before = IndexBytes();
  for (const Arguments& command : ChangingCommands("my.index")) {
    EXPECT_EQ(Run(command, GiveUpPrivileges),
              Failure("cannot change index 'my.index': permission denied"))
        << command.front();
  }
  EXPECT_EQ(IndexBytes(), before);
  EXPECT_EQ(Run({"list", "my.index"}, GiveUpPrivileges), Success("docs/a\n"));
}

TEST_F(OpenedIndexTest, FolderWithoutLeaveToWriteTakesNoNewIndex) {
  OpenFolderToAll(0555);
  EXPECT_EQ(
      Run({"index", "new", "docs"}, GiveUpPrivileges),
      Failure("cannot change index 'new': cannot make a folder beside it: permission denied"));
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
}

TEST_F(OpenedIndexTest, FolderWithoutLeaveToLookHidesItsIndex) {
  Write("closed/index", "");
  ASSERT_EQ(chmod(Path("closed").c_str(), 0), 0);
  OpenFolderToAll(0755);
  ExpectRefusal(EveryCommand("closed/index"), "closed/index", "permission denied",
                GiveUpPrivileges);
  ASSERT_EQ(chmod(Path("closed").c_str(), 0755), 0);
}

TEST_F(OpenedIndexTest, DamageThatHidesRecordsIsTold) {
  for (char name = 'a'; name < 'd'; ++name) {
    Add("docs/" + std::string(1, name), std::string("words of ") + name + "\n");
  }
  std::string bytes = IndexBytes();
  // Past the header, whose damage keeps the file from being opened, and what leads to the buckets.
  for (std::size_t at = 2000; at < bytes.size(); at += 97)
    bytes[at] = static_cast<char>(~bytes[at]);
  Write("my.index", bytes);
  const std::string complaint = "kestan: cannot read index 'my.index': ";
  for (Arguments command : ReadingCommands("my.index")) {
    const Outcome outcome = Run(command);
    EXPECT_EQ(outcome.status, 2) << command.front() << outcome;
    EXPECT_EQ(outcome.err.substr(0, complaint.size()), complaint) << command.front();
    EXPECT_EQ(outcome.err.find("; see kestan check\n"), outcome.err.size() - 19) << outcome;
  }
  const Outcome check = Run({"check", "my.index"});
  EXPECT_EQ(check.status, 1) << check;
  EXPECT_NE(check.out.find("index file: damaged"), std::string::npos) << check;
}

TEST_F(OpenedIndexTest, FullDiskIsToldWhileIndexing) {
  Add("docs/a", "some words\n");
  Write("docs/b", std::string(100, 'b') + "\n" + std::string(400, 'c'));
  const Outcome outcome =
      Run({"index", "my.index", "docs"}, FileSizeLimit(IndexBytes().size() + 1));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(
      outcome.err.find("kestan: cannot write to index 'my.index': a write failed, perhaps for "
                       "want of room ("),
      0u)
      << outcome;
  EXPECT_NE(outcome.err.find("); it is as it was\n"), std::string::npos) << outcome;
  EXPECT_EQ(outcome.out, "");
}

TEST_F(OpenedIndexTest, FullDiskBehindANewIndexIsToldByItsName) {
  EXPECT_EQ(Run({"index", "new", "docs"}, FileSizeLimit(100)).err.find("kestan-new"),
            std::string::npos);
}

TEST_F(OpenedIndexTest, SavingTellsThatTheFileRefusedRecords) {
  Kestan engine;
  kestan_cli::OpenedIndex index(engine, Path("my.index"), kestan_cli::Access::kCreate);
  EXPECT_NO_THROW(index.Save());
  std::signal(SIGXFSZ, SIG_IGN);
  FileSizeLimit(IndexBytes().size() + 1)();
  engine.AddDocumentWords("a", (std::string(3000, 'x') + " y").c_str());
  EXPECT_THROW(index.Save(), kestan_cli::CommandError);
}

TEST_F(OpenedIndexTest, FactsTellHowManyDocumentsFit) {
  using kestan_cli::Access;
  using kestan_cli::ExamineIndex;
  Add("docs/a", "some words\n");
  EXPECT_EQ(ExamineIndex(Path("my.index"), Access::kRead).free_codes, 65534u);
  Plant(Path("my.index"), {{"g-code", Units({65535})}, {"g-avail", Units({7, 9, 11})}});
  EXPECT_EQ(ExamineIndex(Path("my.index"), Access::kRead).free_codes, 3u);
}

TEST_F(OpenedIndexTest, FactsTellHowManyDocumentsThereAre) {
  using kestan_cli::Access;
  using kestan_cli::ExamineIndex;
  Add("docs/a", "some words\n");
  const Records codes = {
      {"g-code", Units({9})}, {"g-avail", Units({7})}, {"g-deleted", Units({2, 3})}};
  Plant(Path("my.index"), codes);
  EXPECT_EQ(ExamineIndex(Path("my.index"), Access::kRead).documents, 6u);
  Plant(Path("my.index"), {{"g-code", Units({2})}});
  EXPECT_EQ(ExamineIndex(Path("my.index"), Access::kRead).documents, 0u);
}

TEST_F(OpenedIndexTest, FactsSurviveDamagedRecords) {
  using kestan_cli::Access;
  Add("docs/a", "some words\n");
  Plant(Path("my.index"), {{"g-code", "\x05"}, {"g-avail", "abc"}});
  const kestan_cli::IndexFacts facts = kestan_cli::ExamineIndex(Path("my.index"), Access::kWrite);
  EXPECT_TRUE(facts.had_documents);
  EXPECT_EQ(facts.free_codes, 65536u - 5);
}

TEST_F(OpenedIndexTest, NewIndexNeverHadADocument) {
  using kestan_cli::Access;
  const kestan_cli::IndexFacts facts = kestan_cli::ExamineIndex(Path("new"), Access::kCreate);
  EXPECT_FALSE(facts.had_documents);
  EXPECT_EQ(facts.free_codes, 65535u);
}

}  // namespace
}  // namespace kestan_tests
