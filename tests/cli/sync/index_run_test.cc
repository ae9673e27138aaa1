// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/files/paths.h"
#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"

namespace kestan_cli {
namespace {

// Brings my.index up to date with the directory d, in the test's own process.
class IndexRunTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override {
    std::filesystem::current_path(Path(""));
    std::filesystem::create_directory("d");
  }
  void TearDown() override { std::filesystem::current_path("/"); }

  // Runs once, and returns its report as a line, without the totals.
  std::string Index(bool all = false, bool prune = false) {
    IndexChange change("my.index", ProgressStyle::kNone);
    Progress progress(ProgressStyle::kNone);
    report_ = {};
    const RunRules rules{[this](const std::string&) -> const ReadingRules& { return rules_; },
                         [prune](const std::string&) { return prune; }};
    CarryOut(Plan(change, all), rules, change, progress, &report_);
    has_changed_ = change.HasChanges();
    change.Commit();
    const std::string line = ReportLine(report_);
    return line.substr(0, line.find(", 0 documents")) + "\n";
  }

  IndexReport report_;
  bool has_changed_ = false;

 private:
  ChangePlan Plan(const IndexChange& change, bool all) {
    const Scan scan = ScanRoots({{Path("d"), "d", {}, MissingPath::kThrow}}, {}, "my.index");
    return PlanChanges(scan.files, change.Documents(), HasVanished, all);
  }

  ReadingRules rules_{Converters::BuiltIn(), {}, 100, {}};
};

std::string Line(int added, int updated, int moved, int removed, int unchanged,
                 const std::string& skipped = "0") {
  return "added " + std::to_string(added) + ", updated " + std::to_string(updated) + ", moved " +
         std::to_string(moved) + ", removed " + std::to_string(removed) + ", unchanged " +
         std::to_string(unchanged) + ", skipped " + skipped + "\n";
}

TEST_F(IndexRunTest, NewFilesAreAdded) {
  Write("d/a", "cat dog\n");
  Write("d/b", "dog\n");
  EXPECT_EQ(Index(), Line(2, 0, 0, 0, 0));
  EXPECT_EQ(kestan_tests::ListOfIndex("my.index", Path("")), "d/a\nd/b\n");
}

TEST_F(IndexRunTest, NothingNewLeavesTheIndexAlone) {
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 0));
  EXPECT_FALSE(std::filesystem::exists("my.index"));
  Write("d/a", "cat\n");
  Index();
  EXPECT_TRUE(has_changed_);
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 1));
  EXPECT_FALSE(has_changed_);
}

TEST_F(IndexRunTest, ChangedFilesAreUpdatedAndTouchedOnesAreNot) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  Index();
  Write("d/a", "fish and chips\n");
  std::filesystem::last_write_time("d/b", {});
  EXPECT_EQ(Index(), Line(0, 1, 0, 0, 1));
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 2)) << "the new time was stored";
}

TEST_F(IndexRunTest, UnchangedFilesAreIndexedAgainOnDemand) {
  Write("d/a", "cat\n");
  Index();
  EXPECT_EQ(Index(true), Line(0, 1, 0, 0, 0));
}

TEST_F(IndexRunTest, MovedFilesKeepTheirDocument) {
  Write("d/a", "cat\n");
  Index();
  std::filesystem::rename("d/a", "d/b");
  EXPECT_EQ(Index(), Line(0, 0, 1, 0, 0));
}

TEST_F(IndexRunTest, MovedFilesThatAreReadInAnotherWayAreUpdated) {
  Write("d/a.txt", "<p>cat\n");
  Index();
  std::filesystem::rename("d/a.txt", "d/a.html");
  EXPECT_EQ(Index(), Line(0, 1, 0, 0, 0));
}

TEST_F(IndexRunTest, DocumentsOfVanishedFilesGoOnDemand) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  Index();
  std::filesystem::remove("d/a");
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 1));
  EXPECT_EQ(Index(false, true), Line(0, 0, 0, 1, 1));
}

TEST_F(IndexRunTest, FilesThatCannotBeReadAreSkipped) {
  Write("d/a", std::string("a\0b", 3));
  Write("d/b", std::string(101, 'x'));
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 0, "2 (1 binary file, 1 too large)"));
}

TEST_F(IndexRunTest, FilesReadInPartHaveANote) {
  Write("d/a", std::string("\xff\xfez\0x", 5));
  EXPECT_EQ(Index(), Line(1, 0, 0, 0, 0));
  ASSERT_EQ(report_.notes.size(), 1u);
  EXPECT_EQ(report_.notes[0].name, Path("d/a"));
}

}  // namespace
}  // namespace kestan_cli
