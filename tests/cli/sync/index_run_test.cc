#include "cli/sync/index_run.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli/files/paths.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"
#include "tests/cli/command_test.h"

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

  // Runs once, and returns its report as a line.
  std::string Index(bool all = false, bool prune = false) {
    IndexTransaction transaction(engine_, "my.index", Access::kCreate, UpdateMode::kOnCopy);
    IndexWriter writer(transaction);
    Progress progress(ProgressStyle::kNone, 0, 0);
    report_ = {};
    CarryOut(Plan(all), rules_, prune, writer, progress, &report_);
    report_.new_words = writer.Finish();
    return ReportLine(report_);
  }

  unsigned long CodesNeeded() {
    Progress progress(ProgressStyle::kNone, 0, 0);
    return CountCodesNeeded(Plan(false), rules_, progress);
  }

  IndexReport report_;

 private:
  ChangePlan Plan(bool all) {
    const Scan scan = ScanPaths({"d"}, "my.index", {}, MissingPath::kThrow);
    std::vector<IndexedDocument> documents;
    if (std::filesystem::exists("my.index")) {
      const OpenedIndex opened(engine_, "my.index", Access::kRead);
      documents = IndexedDocuments(engine_);
    }
    return PlanChanges(scan.files, documents, {"d"}, HasVanished, all);
  }

  Kestan engine_;
  ReadingRules rules_{Converters::BuiltIn(), {}, 100, {}};
};

std::string Line(int added, int updated, int moved, int removed, int unchanged,
                 const std::string& skipped = "0") {
  return "added " + std::to_string(added) + ", updated " + std::to_string(updated) + ", moved " +
         std::to_string(moved) + ", removed " + std::to_string(removed) + ", unchanged " +
         std::to_string(unchanged) + ", skipped " + skipped + "\n";
}

TEST_F(IndexRunTest, NewFilesAreAddedAndTheirWordsCounted) {
  Write("d/a", "cat dog\n");
  Write("d/b", "dog\n");
  EXPECT_EQ(CodesNeeded(), 2u);
  EXPECT_EQ(Index(), Line(2, 0, 0, 0, 0));
  EXPECT_EQ(report_.new_words, 2u);
}

TEST_F(IndexRunTest, NothingNewLeavesTheIndexAlone) {
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 0));
  EXPECT_FALSE(std::filesystem::exists("my.index"));
  Write("d/a", "cat\n");
  Index();
  const auto before = std::filesystem::last_write_time("my.index");
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 1));
  EXPECT_EQ(std::filesystem::last_write_time("my.index"), before);
}

TEST_F(IndexRunTest, ChangedFilesTakeACodeAndTouchedOnesDoNot) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  Index();
  Write("d/a", "fish and chips\n");
  std::filesystem::last_write_time("d/b", {});
  EXPECT_EQ(CodesNeeded(), 1u);
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
  EXPECT_EQ(CodesNeeded(), 0u);
  EXPECT_EQ(Index(), Line(0, 0, 1, 0, 0));
}

TEST_F(IndexRunTest, MovedFilesThatAreReadInAnotherWayAreUpdated) {
  Write("d/a.txt", "<p>cat\n");
  Index();
  std::filesystem::rename("d/a.txt", "d/a.html");
  EXPECT_EQ(CodesNeeded(), 1u);
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

TEST_F(IndexRunTest, FilesThatCannotBeReadAreSkippedAndTakeNoCode) {
  Write("d/a", std::string("a\0b", 3));
  Write("d/b", std::string(101, 'x'));
  EXPECT_EQ(CodesNeeded(), 0u);
  EXPECT_EQ(Index(), Line(0, 0, 0, 0, 0, "2 (1 binary file, 1 too large)"));
}

TEST_F(IndexRunTest, FilesReadInPartHaveANote) {
  Write("d/a", std::string("\xff\xfez\0x", 5));
  EXPECT_EQ(Index(), Line(1, 0, 0, 0, 0));
  ASSERT_EQ(report_.notes.size(), 1u);
  EXPECT_EQ(report_.notes[0].name, "d/a");
}

}  // namespace
}  // namespace kestan_cli
