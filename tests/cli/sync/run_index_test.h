// SPDX-License-Identifier: GPL-3.0-or-later
// Running `kestan index` inside the test's process, with options of all kinds.
#ifndef KESTAN_TESTS_CLI_SYNC_RUN_INDEX_TEST_H_
#define KESTAN_TESTS_CLI_SYNC_RUN_INDEX_TEST_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>

#include "cli/commands/documents/index_command.h"
#include "cli/console/message.h"
#include "tests/cli/command_test.h"
#include "tests/cli/index_folder.h"

namespace kestan_cli {

// Returns a report of these numbers, without the totals of the index.
inline std::string Report(unsigned added, unsigned updated, unsigned moved, unsigned removed,
                          unsigned unchanged, const std::string& skipped = "0") {
  return "added " + std::to_string(added) + ", updated " + std::to_string(updated) + ", moved " +
         std::to_string(moved) + ", removed " + std::to_string(removed) + ", unchanged " +
         std::to_string(unchanged) + ", skipped " + skipped + "\n";
}

// Works inside the test's folder, so that names are short. Runs do not use what earlier ones have
// left in the memory of the index, unless a test sets `options_.reset`.
class RunIndexTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override {
    std::filesystem::current_path(Path(""));
    options_.paths = {"d"};
    options_.reset = true;
  }
  void TearDown() override { std::filesystem::current_path("/"); }

  // Indexes what `options_` say.
  //   Returns  what was printed, without the totals of the index and what helps against skips, then
  //            what was said about errors.
  std::string Index() {
    static const std::regex totals(", [0-9,]+ documents? in [0-9]+ segments?\n");
    static const std::regex remedies("\n  [0-9][^\n]*");
    return std::regex_replace(std::regex_replace(IndexWithTotals(), remedies, ""), totals, "\n");
  }

  std::string IndexWithTotals() {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::string end;
    try {
      status_ = RunIndex("my.index", options_);
    } catch (const CommandError& error) {
      status_ = error.status();
      end = std::string(error.what()) + "\n";
    }
    const std::string out = testing::internal::GetCapturedStdout();
    return out + testing::internal::GetCapturedStderr() + end;
  }

  // The same with a list of paths, each ended by a NUL, on the standard input.
  std::string IndexList(const std::string& list) {
    Write("list", list);
    EXPECT_NE(std::freopen("list", "r", stdin), nullptr);
    options_.paths.clear();
    options_.paths_from_stdin = true;
    return Index();
  }

  // What the index has, with names as they are below the test's folder.
  std::string List() { return kestan_tests::ListOfIndex("my.index", Path("")); }
  std::string Search(const std::string& query) {
    return kestan_tests::AnswersOfIndex("my.index", query, Path(""));
  }
  kestan::search::DocumentInfo Info(const std::string& name) {
    return kestan_tests::DocumentsOfIndex("my.index")[Path(name)];
  }

  // Adds lines of the user's own to the record of a document.
  void AddToRecord(const std::string& name, const std::string& lines) {
    const std::string record = Info(name).host_data + lines;
    kestan_tests::ChangeIndex("my.index", [&](kestan::search::IndexWriter& writer) {
      using kestan::search::DocumentField;
      EXPECT_TRUE(writer.SetField(Path(name), DocumentField::kHostData, record).ok());
    });
  }

  IndexOptions options_;
  int status_ = -1;
};

}  // namespace kestan_cli

#endif  // KESTAN_TESTS_CLI_SYNC_RUN_INDEX_TEST_H_
