#include "cli/index/index_examination.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using Arguments = std::vector<std::string>;

class IndexExaminationTest : public CommandTest {
 protected:
  void SetUp() override { Write("docs/a", "some words\n"); }

  // Returns commands of every kind on the index `index`.
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

  // Expects all `commands` to fail: they cannot open `index` because of `reason`.
  void ExpectRefusal(
      const std::vector<Arguments>& commands, const std::string& index, const std::string& reason,
      const InChild& prepare = [] {}, int status = 2) {
    const std::string line = "kestan: cannot open index '" + index + "': " + reason + "\n";
    for (const Arguments& command : commands) {
      EXPECT_EQ(Run(command, prepare), (Outcome{status, "", line})) << command.front();
    }
  }

  // The same, and expects the file at `index` to keep its bytes.
  void ExpectRefusalOfFile(
      const std::vector<Arguments>& commands, const std::string& index, const std::string& reason,
      const InChild& prepare = [] {}) {
    const std::string before = BytesOfFile(Path(index));
    ExpectRefusal(commands, index, reason, prepare);
    EXPECT_EQ(BytesOfFile(Path(index)), before);
  }
};

TEST_F(IndexExaminationTest, OnlyIndexingMakesAMissingIndex) {
  ExpectRefusal({{"search", "new", "cat"},
                 {"list", "new"},
                 {"stats", "new"},
                 {"remove", "new", "a"},
                 {"shrink", "new"}},
                "new", "no such file; kestan index makes one");
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
  EXPECT_EQ(Run({"index", "new", "docs"}).status, 0);
}

TEST_F(IndexExaminationTest, NewIndexNeedsADirectory) {
  ExpectRefusal({{"index", "nowhere/new", "docs"}}, "nowhere/new", "no such folder");
  ExpectRefusal({{"index", "", "docs"}}, "", "no such folder");
}

TEST_F(IndexExaminationTest, DirectoryIsNoIndex) {
  ExpectRefusal(EveryCommand("docs"), "docs", "is a folder");
}

TEST_F(IndexExaminationTest, DeviceIsNoIndex) {
  ExpectRefusal(EveryCommand("/dev/null"), "/dev/null", "not an index file");
}

TEST_F(IndexExaminationTest, PipeIsNoIndexAndIsNotOpened) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0644), 0);
  ExpectRefusal(EveryCommand("pipe"), "pipe", "not an index file");
}

TEST_F(IndexExaminationTest, ShortTextIsNoIndex) {
  Write("note", "buy milk\n");
  ExpectRefusalOfFile(
      EveryCommand("note"), "note",
      "not an index file (Unexpected end of file); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, LongTextIsNoIndex) {
  Write("book", std::string(100000, 'x'));
  ExpectRefusalOfFile(EveryCommand("book"), "book",
                      "not an index file (Bad magic number); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, OnlyIndexingAcceptsAnEmptyFile) {
  Write("empty", "");
  std::vector<Arguments> commands = ReadingCommands("empty");
  commands.push_back({"remove", "empty", "a"});
  commands.push_back({"shrink", "empty"});
  ExpectRefusalOfFile(commands, "empty",
                      "not an index file (Empty database); if it was one, see kestan repair");
  EXPECT_EQ(Run({"index", "empty", "docs"}).status, 0);
  EXPECT_EQ(Run({"list", "empty"}), Success("docs/a\n"));
}

TEST_F(IndexExaminationTest, EmptyFileStaysEmptyWhenThereIsNothingToIndex) {
  Write("empty", "");
  EXPECT_EQ(Run({"index", "empty", "nowhere"}).status, 2);
  EXPECT_EQ(BytesOfFile(Path("empty")), "");
}

TEST_F(IndexExaminationTest, FileOfAnotherProgramIsNoIndex) {
  Plant(Path("other"), {{"key", "value"}});
  ExpectRefusalOfFile(EveryCommand("other"), "other",
                      "not an index file; if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, TruncatedIndexIsNoIndex) {
  Add("docs/a", "some words\n");
  Write("part", IndexBytes().substr(0, IndexBytes().size() / 2));
  ExpectRefusalOfFile(
      EveryCommand("part"), "part",
      "not an index file (Malformed database file header); if it was one, see kestan repair");
}

TEST_F(IndexExaminationTest, IndexThatAnotherProcessWritesIsLocked) {
  Add("docs/a", "some words\n");
  Database holder;
  ASSERT_EQ(holder.Open(Path("my.index").c_str(), 1), 0);
  const std::string before = IndexBytes();
  ExpectRefusal(
      EveryCommand("my.index"), "my.index", "another process is changing it; try again later",
      [] {}, 75);
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(IndexExaminationTest, UnreadableIndexIsAnError) {
  Add("docs/a", "some words\n");
  OpenFolderToAll(0755);
  ASSERT_EQ(chmod(Path("my.index").c_str(), 0), 0);
  ExpectRefusal(EveryCommand("my.index"), "my.index", "permission denied", GiveUpPrivileges);
}

TEST_F(IndexExaminationTest, ReadOnlyIndexCanOnlyBeRead) {
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

TEST_F(IndexExaminationTest, ReadOnlyDirectoryTakesNoNewIndex) {
  OpenFolderToAll(0555);
  EXPECT_EQ(
      Run({"index", "new", "docs"}, GiveUpPrivileges),
      Failure("cannot change index 'new': cannot make a folder beside it: permission denied"));
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
}

TEST_F(IndexExaminationTest, UnreadableDirectoryHidesItsIndex) {
  Write("closed/index", "");
  ASSERT_EQ(chmod(Path("closed").c_str(), 0), 0);
  OpenFolderToAll(0755);
  ExpectRefusal(EveryCommand("closed/index"), "closed/index", "permission denied",
                GiveUpPrivileges);
  ASSERT_EQ(chmod(Path("closed").c_str(), 0755), 0);
}

TEST_F(IndexExaminationTest, CountsHaveTheNumberOfFreeCodes) {
  using kestan_cli::Access;
  using kestan_cli::ExamineIndex;
  Add("docs/a", "some words\n");
  EXPECT_EQ(ExamineIndex(Path("my.index"), Access::kRead).free_codes, 65534u);
  Plant(Path("my.index"), {{"g-code", Units({65535})}, {"g-avail", Units({7, 9, 11})}});
  EXPECT_EQ(ExamineIndex(Path("my.index"), Access::kRead).free_codes, 3u);
}

TEST_F(IndexExaminationTest, CountsHaveTheNumberOfDocuments) {
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

TEST_F(IndexExaminationTest, CountsSurviveDamagedRecords) {
  using kestan_cli::Access;
  Add("docs/a", "some words\n");
  Plant(Path("my.index"), {{"g-code", "\x05"}, {"g-avail", "abc"}});
  const kestan::DocumentCounts counts = kestan_cli::ExamineIndex(Path("my.index"), Access::kWrite);
  EXPECT_TRUE(counts.had_documents);
  EXPECT_EQ(counts.free_codes, 65536u - 5);
}

TEST_F(IndexExaminationTest, NewIndexNeverHadADocument) {
  using kestan_cli::Access;
  const kestan::DocumentCounts counts = kestan_cli::ExamineIndex(Path("new"), Access::kCreate);
  EXPECT_FALSE(counts.had_documents);
  EXPECT_EQ(counts.free_codes, 65535u);
}

TEST_F(IndexExaminationTest, IndexWithoutItsCounterIsDamaged) {
  Add("docs/a", "some words\n");
  {
    Database store;
    ASSERT_EQ(store.Open(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(store.Del(DBDatum("g-code", 6)), 0);
  }
  ExpectRefusalOfFile(EveryCommand("my.index"), "my.index",
                      "its counter of documents is lost; kestan repair saves what it still holds");
  EXPECT_NO_THROW(kestan_cli::ExamineIndex(Path("my.index"), kestan_cli::Access::kInspect));
}

TEST_F(IndexExaminationTest, RealPathFollowsAChainOfLinksToAMissingFile) {
  std::filesystem::create_symlink("second", Path("first"));
  std::filesystem::create_symlink(Path("file"), Path("second"));
  EXPECT_EQ(kestan_cli::RealPath(Path("first")), Path("file"));
  EXPECT_EQ(kestan_cli::RealPath(Path("file")), Path("file"));
}

}  // namespace
}  // namespace kestan_tests
