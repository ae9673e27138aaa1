// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_report.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

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

TEST(IndexReportTest, NumbersHaveCommas) {
  IndexReport report;
  report.added = report.unchanged = 1234;
  EXPECT_EQ(ReportLine(report).substr(0, 12), "added 1,234,");
  EXPECT_NE(ReportLine(report).find("unchanged 1,234,"), std::string::npos);
}

// Returns so many skips of one kind.
std::vector<Skip> Skips(std::size_t count, SkipKind kind, const std::string& remedy = "") {
  return std::vector<Skip>(count, {"a", kind, "", remedy});
}

std::vector<Skip> operator+(std::vector<Skip> left, const std::vector<Skip>& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

TEST(IndexReportTest, RemediesOfTheThreeMostFrequentReasonsAreLines) {
  const auto skips = Skips(1, SkipKind::kName) + Skips(3, SkipKind::kNoConverter, "install x") +
                     Skips(2, SkipKind::kNoConverter, "install y") + Skips(4, SkipKind::kIgnored);
  EXPECT_EQ(RemedyLines(skips),
            "  4 ignored: .gitignore, .ignore or version control says so; --no-ignore takes them\n"
            "  3 without converter: install x\n"
            "  2 without converter: install y\n");
  EXPECT_EQ(RemedyLines({}), "");
}

TEST(IndexReportTest, WhatCannotBeHelpedComesLast) {
  const auto binary = Skips(1000, SkipKind::kBinary);
  const std::string line = "  1,000 binary files: pictures, programs and the like hold no text\n";
  const auto two = Skips(3, SkipKind::kChanging) + Skips(2, SkipKind::kTooLarge);
  EXPECT_EQ(RemedyLines(binary), line);
  EXPECT_EQ(RemedyLines(binary + two), line +
                                           "  3 changed meanwhile: run the command again\n"
                                           "  2 too large: split them; --why names them\n");
  EXPECT_EQ(RemedyLines(binary + two + Skips(1, SkipKind::kName)),
            "  3 changed meanwhile: run the command again\n"
            "  2 too large: split them; --why names them\n"
            "  1 unusable name: rename them, without line feeds\n");
}

TEST(IndexReportTest, SummaryFitsATerminal) {
  EXPECT_EQ(Summary(Example(), 0), ReportLine(Example()) + RemedyLines(Example().skips));
  EXPECT_EQ(Summary(Example(), 70),
            "added 1, updated 2, moved 3, removed 4, unchanged 5, skipped 3 (2\n"
            "    binary files, 1 unusable name), 1,234 documents in 4 segments\n"
            "  2 binary files: pictures, programs and the like hold no text\n"
            "  1 unusable name: rename them, without line feeds\n");
}

TEST(IndexReportTest, FailuresAreNamedUpToALimit) {
  using Lines = std::vector<std::string>;
  IndexReport report = Example();
  report.notes = {{"d/c", "cut"}, {"d/d", "cut"}};
  const Lines all{"skipped 'd/b\\n': its name holds a line feed", "indexed 'd/c' in part: cut",
                  "indexed 'd/d' in part: cut"};
  EXPECT_EQ(FailureLines(report, std::string::npos), all);
  EXPECT_EQ(FailureLines(report, 3), all);
  EXPECT_EQ(FailureLines(report, 2),
            (Lines{all[0], all[1], "1 more like these; --why names them all"}));
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
      R"("new_words":6,"documents":1234,"segments":4,"skipped":{"total":3,"binary":2,"name":1},)"
      R"("skipped_reasons":[{"kind":"binary","files":2},)"
      R"({"kind":"name","files":1,"remedy":"rename them, without line feeds"}]})"
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

TEST(IndexReportTest, NothingToIndexSaysWhatHelps) {
  EXPECT_EQ(NothingToIndex(Skips(2, SkipKind::kIgnored)),
            "nothing to index: no text files, 0 binary files, 0 links, 2 ignored; .gitignore, "
            ".ignore or version control says so; --no-ignore takes them");
}

}  // namespace
}  // namespace kestan_cli
