// Running `kestan index` inside the test's process, with options of all kinds.
#ifndef KESTAN_TESTS_CLI_SYNC_RUN_INDEX_TEST_H_
#define KESTAN_TESTS_CLI_SYNC_RUN_INDEX_TEST_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli/commands/documents/index_command.h"
#include "cli/console/message.h"
#include "tests/cli/command_test.h"

namespace kestan_cli {

// Returns a report of these numbers.
inline std::string Report(unsigned added, unsigned updated, unsigned moved, unsigned removed,
                          unsigned unchanged, const std::string& skipped = "0") {
  return "added " + std::to_string(added) + ", updated " + std::to_string(updated) + ", moved " +
         std::to_string(moved) + ", removed " + std::to_string(removed) + ", unchanged " +
         std::to_string(unchanged) + ", skipped " + skipped + "\n";
}

// Works inside the test's folder, so that names are short.
class RunIndexTest : public kestan_tests::CommandTest {
 protected:
  void SetUp() override {
    std::filesystem::current_path(Path(""));
    options_.paths = {"d"};
  }
  void TearDown() override { std::filesystem::current_path("/"); }

  // Indexes what `options_` say.
  //   Returns  what was printed, then what was said about errors.
  std::string Index() {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::string end;
    try {
      status_ = RunIndex(engine_, "my.index", options_);
    } catch (const CommandError& error) {
      status_ = kFailed;
      end = std::string(error.what()) + "\n";
    }
    const std::string out = testing::internal::GetCapturedStdout();
    return out + testing::internal::GetCapturedStderr() + end;
  }

  std::string List() { return Run({"list", "my.index"}).out; }
  std::string Search(const std::string& query) { return Run({"search", "my.index", query}).out; }
  std::string Record(const std::string& key) { return kestan_tests::Dump("my.index")[key]; }

  IndexOptions options_;
  int status_ = -1;
  Kestan engine_;
};

}  // namespace kestan_cli

#endif  // KESTAN_TESTS_CLI_SYNC_RUN_INDEX_TEST_H_
