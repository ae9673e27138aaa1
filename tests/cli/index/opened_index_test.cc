#include "cli/index/opened_index.h"

#include <gtest/gtest.h>

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
};

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

TEST_F(OpenedIndexTest, DamageThatHidesRecordsIsReported) {
  for (char name = 'a'; name < 'd'; ++name) {
    Add("docs/" + std::string(1, name), std::string("words of ") + name + "\n");
  }
  std::string bytes = IndexBytes();
  // Past the header, whose damage keeps the file from being opened, and what leads to the buckets.
  for (std::size_t at = 2000; at < bytes.size(); at += 97)
    bytes[at] = static_cast<char>(~bytes[at]);
  Write("my.index", bytes);
  const std::string complaint = "kestan: cannot read index 'my.index': ";
  const std::vector<Arguments> commands{
      {"search", "my.index", "cat"}, {"list", "my.index"}, {"stats", "my.index"}};
  for (const Arguments& command : commands) {
    const Outcome outcome = Run(command);
    EXPECT_EQ(outcome.status, 2) << command.front() << outcome;
    EXPECT_EQ(outcome.err.substr(0, complaint.size()), complaint) << command.front();
    EXPECT_EQ(outcome.err.find("; see kestan check\n"), outcome.err.size() - 19) << outcome;
  }
  const Outcome check = Run({"check", "my.index"});
  EXPECT_EQ(check.status, 1) << check;
  EXPECT_NE(check.out.find("index file: damaged"), std::string::npos) << check;
}

TEST_F(OpenedIndexTest, FullDiskIsReportedWhileIndexing) {
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

TEST_F(OpenedIndexTest, FullDiskIsReportedUnderTheNameOfTheIndex) {
  EXPECT_EQ(Run({"index", "new", "docs"}, FileSizeLimit(100)).err.find("kestan-new"),
            std::string::npos);
}

TEST_F(OpenedIndexTest, SaveThrowsIfTheFileRefusesRecords) {
  Kestan engine;
  kestan_cli::OpenedIndex index(engine, Path("my.index"), kestan_cli::Access::kCreate);
  EXPECT_NO_THROW(index.Save());
  std::signal(SIGXFSZ, SIG_IGN);
  FileSizeLimit(IndexBytes().size() + 1)();
  engine.AddDocumentWords("a", (std::string(3000, 'x') + " y").c_str());
  EXPECT_THROW(index.Save(), kestan_cli::CommandError);
}

}  // namespace
}  // namespace kestan_tests
