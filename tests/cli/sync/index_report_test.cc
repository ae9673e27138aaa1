#include "cli/sync/index_report.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

IndexReport Example() {
  IndexReport report;
  report.added = 1;
  report.updated = 2;
  report.moved = 3;
  report.removed = 4;
  report.unchanged = 5;
  report.new_words = 6;
  report.documents = 1234;
  report.segments = 4;
  report.skips = {{"d/a", SkipKind::kBinary, "binary file"},
                  {"d/b\n", SkipKind::kName, "its name holds a line feed"},
                  {"d/\xff", SkipKind::kBinary, "binary file"}};
  return report;
}

TEST(IndexReportTest, LineHasAllCounts) {
  EXPECT_EQ(ReportLine(Example()),
            "added 1, updated 2, moved 3, removed 4, unchanged 5, "
            "skipped 3 (2 binary files, 1 unusable name), 1,234 documents in 4 segments\n");
}

TEST(IndexReportTest, NothingSkippedNeedsNoReasons) {
  EXPECT_EQ(ReportLine({}),
            "added 0, updated 0, moved 0, removed 0, unchanged 0, skipped 0, 0 documents in 0 "
            "segments\n");
}

TEST(IndexReportTest, OneOfEachIsNoPlural) {
  IndexReport report;
  report.documents = 1;
  report.segments = 1;
  EXPECT_NE(ReportLine(report).find(", 1 document in 1 segment\n"), std::string::npos);
}

TEST(IndexReportTest, PathsAreShownAsTheyOpenFromHere) {
  const kestan_tests::TempDir folder;
  std::filesystem::current_path(folder / "");
  EXPECT_EQ(SkipLine({folder / "d/a", SkipKind::kBinary, "binary file"}),
            "skipped 'd/a': binary file");
  EXPECT_EQ(NoteLine({folder / "d/a", "cut"}), "indexed 'd/a' in part: cut");
  std::filesystem::current_path("/");
}

TEST(IndexReportTest, EachSkippedFileIsOneLine) {
  EXPECT_EQ(SkipLines(Example().skips),
            "skipped 'd/a': binary file\n"
            "skipped 'd/b\\n': its name holds a line feed\n"
            "skipped 'd/\\xff': binary file\n");
}

TEST(IndexReportTest, JsonHasTheSame) {
  EXPECT_EQ(
      ReportJson(Example(), false),
      R"({"schema":1,"added":1,"updated":2,"moved":3,"removed":4,"unchanged":5,)"
      R"("new_words":6,"documents":1234,"segments":4,"skipped":{"total":3,"binary":2,"name":1}})"
      "\n");
}

TEST(IndexReportTest, JsonHasTheFilesWhereAskedFor) {
  const std::string json = ReportJson(Example(), true);
  EXPECT_NE(json.find(R"("skipped_files":[{"name":"d/a","kind":"binary","reason":"binary file"})"),
            std::string::npos);
  EXPECT_NE(json.find(R"("d/b\n")"), std::string::npos);
  EXPECT_NE(json.find("d/\xef\xbf\xbd"), std::string::npos);
  EXPECT_NE(ReportJson({}, true).find(R"("skipped_files":[])"), std::string::npos);
}

TEST(IndexReportTest, FilesIndexedInPartAreNamed) {
  IndexReport report;
  report.notes = {{"d/a\n", "half of it is gone"}};
  EXPECT_EQ(NoteLines(report.notes), "indexed 'd/a\\n' in part: half of it is gone\n");
  EXPECT_NE(ReportJson(report, false)
                .find(R"("partial_files":[{"name":"d/a\n","reason":"half of it is gone"}])"),
            std::string::npos);
}

TEST(IndexReportTest, NothingToIndexSaysWhatThereWas) {
  EXPECT_EQ(NothingToIndex(Example().skips),
            "nothing to index: no text files, 2 binary files, 0 links, 1 unusable name");
}

}  // namespace
}  // namespace kestan_cli
