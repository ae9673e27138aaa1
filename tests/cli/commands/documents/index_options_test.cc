// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/cli/sync/run_index_test.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;
using IndexOptionsTest = RunIndexTest;

// ---- Words ----

TEST_F(IndexOptionsTest, EveryScriptIsFound) {
  Write("d/utf8", "Z\u00fcrich");
  Write("d/latin1", "Z\xfcrich");
  Write("d/utf16", std::string("\xff\xfeZ\0\xfc\0r\0i\0c\0h\0", 14));
  Write("d/page.html", "<p>Z&uuml;<b>rich</b>");
  EXPECT_EQ(Index(), Report(4, 0, 0, 0, 0));
  EXPECT_EQ(Search("zurich"), "100 d/latin1\n100 d/page.html\n100 d/utf16\n100 d/utf8\n");
}

TEST_F(IndexOptionsTest, EncodedBlocksAreLeftOutOnRequest) {
  Write("d/a", "cat\nM" + std::string(60, 'A') + "\n");
  options_.reading.strip_encoded = true;
  Index();
  EXPECT_EQ(Search("m" + std::string(60, 'a')), "");
  options_.reading.strip_encoded = false;
  options_.all = true;
  Index();
  EXPECT_EQ(Search("m" + std::string(60, 'a')), "100 d/a\n");
}

// ---- What is left out ----

TEST_F(IndexOptionsTest, PatternsChooseTheFiles) {
  for (const char* name : {"d/a.txt", "d/b.md", "d/e/c.txt", "d/.git/d.txt"}) Write(name, "cat\n");
  options_.reading.include = {"*.txt"};
  options_.reading.exclude = {".git"};
  EXPECT_EQ(Index(), Report(2, 0, 0, 0, 0, "2 (2 excluded)"));
  EXPECT_EQ(List(), "d/a.txt\nd/e/c.txt\n");
}

TEST_F(IndexOptionsTest, WhyGivesReasonsInOrderOfNames) {
  Write("d/a", "cat\n");
  Write("d/b", std::string(1, '\0'));
  fs::create_symlink("a", "d/\x1b[1m");
  options_.why = true;
  EXPECT_EQ(Index(), "skipped 'd/\\x1b[1m': symbolic link\nskipped 'd/b': binary file\n" +
                         Report(1, 0, 0, 0, 0, "2 (1 binary file, 1 link)"));
  EXPECT_EQ(status_, kDone);
}

TEST_F(IndexOptionsTest, MissingConverterIsNoFailure) {
  Write("d/a.x", "cat\n");
  Write("d/b", "dog\n");
  options_.reading.converters = {"x=no-such-tool {}"};
  options_.why = true;
  EXPECT_EQ(Index(), "skipped 'd/a.x': no converter for .x (no-such-tool is missing)\n" +
                         Report(1, 0, 0, 0, 0, "1 (1 without converter)"));
  EXPECT_EQ(status_, kDone);
}

TEST_F(IndexOptionsTest, FailedConversionKeepsTheEarlierVersionAndIsReportedEachTime) {
  Write("d/a.x", "cat\n");
  options_.reading.converters = {"x=cat {}"};
  Index();
  Write("d/a.x", "dog\n");
  options_.reading.converters = {"x=false {}"};
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(Index(),
              "kestan: skipped 'd/a.x': false ended with status 1\n"
              "nothing to index: no text files, 0 binary files, 0 links, 1 failed conversion\n");
  }
  EXPECT_EQ(Search("cat"), "100 d/a.x\n");
}

TEST_F(IndexOptionsTest, LargeFilesAreReportedAndLeftOut) {
  Write("d/a", "cat\n");
  Write("d/b", "elephant\n");
  options_.max_file_bytes = 4;
  EXPECT_EQ(Index(), Report(1, 0, 0, 0, 0, "1 (1 too large)") +
                         "kestan: skipped 'd/b': larger than 4 bytes\n");
  EXPECT_EQ(status_, kIncomplete);
}

// ---- Lists of paths ----

TEST_F(IndexOptionsTest, PathsComeFromTheStandardInput) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  EXPECT_EQ(IndexList(std::string("d/a\0gone\0", 9)),
            Report(1, 0, 0, 0, 0, "1 (1 unreadable)") +
                "kestan: skipped 'gone': no such file or folder\n");
  EXPECT_EQ(status_, kIncomplete);
}

TEST_F(IndexOptionsTest, RemovedPathOfAListIsPruned) {
  Write("d/a", "cat\n");
  Write("d/b", "dog\n");
  Index();
  fs::remove("d/a");
  options_.prune = true;
  EXPECT_EQ(IndexList("d/a"), Report(0, 0, 0, 1, 0));
  EXPECT_EQ(status_, kDone);
  EXPECT_EQ(List(), "d/b\n");
}

TEST_F(IndexOptionsTest, EmptyListIsNoErrorAndMakesNoIndex) {
  EXPECT_EQ(IndexList(""), Report(0, 0, 0, 0, 0));
  EXPECT_FALSE(fs::exists("my.index"));
}

TEST_F(IndexOptionsTest, PathsComeFromOnePlaceOnly) {
  options_.paths_from_stdin = true;
  EXPECT_EQ(Index(), "paths are read from the standard input: no PATH\n");
  options_.paths.clear();
  options_.paths_from_stdin = false;
  EXPECT_EQ(Index(), "nothing to index: no PATH, and index 'my.index' remembers none\n");
}

// ---- Output ----

TEST_F(IndexOptionsTest, QuietRunPrintsNothingButErrors) {
  Write("d/a", "cat\n");
  options_.quiet = true;
  options_.report = ReportFormat::kNone;
  EXPECT_EQ(Index(), "");
}

TEST_F(IndexOptionsTest, JsonReplacesTheReport) {
  Write("d/a", "cat\n");
  options_.report = ReportFormat::kJson;
  EXPECT_EQ(Index(), R"({"schema":1,"added":1,"updated":0,"moved":0,"removed":0,"unchanged":0,)"
                     R"("new_words":1,"documents":1,"segments":1,"skipped":{"total":0}})"
                     "\n");
}

TEST_F(IndexOptionsTest, InvalidOptionsChangeNothing) {
  Write("d/a", "cat\n");
  options_.reading.converters = {"pdf"};
  EXPECT_EQ(Index(), "converter 'pdf' is not of the form EXT=COMMAND with {} for the file\n");
  options_.reading.converters.clear();
  options_.reading.stop_words = "none";
  EXPECT_EQ(Index(), "cannot read '" + Path("none") + "': no such file or folder\n");
  EXPECT_FALSE(fs::exists("my.index"));
}

}  // namespace
}  // namespace kestan_cli
