// SPDX-License-Identifier: GPL-3.0-or-later
// A writer that is killed before each of its system calls, and one whose calls fail, once or until
// there is room on the disk again: the index is the old one or the new one, nothing is left over,
// and a writer that got an error is of use after Rollback().
//
// In the environment, KESTAN_FAULTS_ALL=1 kills before each call, and gives each call every error;
// by default, kills are before those that change files, and each call gets one error.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/faults/search/interrupted_writer.h"
#include "tests/faults/search/system_errors.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

bool TriesAll() { return kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_ALL", 0) != 0; }

bool ChangesFiles(Function function) {
  return IsWriteLike(function) || function == Function::kRemove || function == Function::kOpen ||
         function == Function::kMakeFolder;
}

bool Has(const Outcome& outcome, const char* line) {
  return ("\n" + outcome.transcript).find("\n" + std::string(line) + ": ") != std::string::npos;
}

TEST(InterruptedWriterTest, KilledBeforeSystemCallLeavesOldOrNewState) {
  const kestan_tests::TempDir folder;
  const InterruptedWriter writer(folder / ".");
  const std::vector<Function> calls = writer.Calls();
  int killed = 0;
  int committed = 0;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (!TriesAll() && !ChangesFiles(calls[i])) continue;
    SCOPED_TRACE("call " + std::to_string(i) + " " + NameOf(calls[i]));
    const Outcome outcome = writer.Run([i, call = std::size_t{0}](const SystemCall&) mutable {
      if (call++ == i) raise(SIGKILL);
      return Ruling();
    });
    ASSERT_EQ(outcome.signal, SIGKILL) << Describe(outcome);
    ++killed;
    committed += writer.Check(Has(outcome, "committed"), false) ? 1 : 0;
    if (HasFailure()) break;
  }
  std::printf("%zu calls, %d kills: %d of the new state\n", calls.size(), killed, committed);
  EXPECT_GT(committed, 0);
  EXPECT_LT(committed, killed);
}

// Has a call fail, and the writer go on.
void CheckFault(const InterruptedWriter& writer, const CallRule& rule,
                const std::shared_ptr<bool>& is_over, int* refused) {
  const Outcome outcome = writer.RunAndRecover(rule, is_over);
  ASSERT_TRUE(outcome.ended && outcome.exit_status == 0) << Describe(outcome);
  ASSERT_TRUE(Has(outcome, "later")) << Describe(outcome);
  const bool is_refused = Has(outcome, "refused");
  ASSERT_TRUE(is_refused != Has(outcome, "compacted")) << Describe(outcome);
  // One line for the error, one for what was done afterwards, at most one for the commit.
  const auto lines = std::count(outcome.transcript.begin(), outcome.transcript.end(), '\n');
  EXPECT_EQ(lines, Has(outcome, "committed") ? 3 : 2) << Describe(outcome);
  EXPECT_EQ(outcome.standard_error, "");
  *refused += is_refused ? 1 : 0;
  writer.Check(Has(outcome, "committed"), true);
}

TEST(InterruptedWriterTest, FailingSystemCallIsAnErrorAndNoLoss) {
  const kestan_tests::TempDir folder;
  const InterruptedWriter writer(folder / ".");
  const std::vector<Function> calls = writer.Calls();
  std::array<std::size_t, kFunctions> turns{};
  int trials = 0;
  int refused = 0;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    std::vector<int> errors = ErrorsOf(calls[i]);
    if (!TriesAll())
      errors = {errors[turns.at(static_cast<std::size_t>(calls[i]))++ % errors.size()]};
    for (const int error : errors) {
      SCOPED_TRACE("call " + std::to_string(i) + " " + NameOf(calls[i]) + ": " +
                   (error == kShort ? "half the bytes" : strerror(error)));
      ++trials;
      CheckFault(
          writer,
          [i, error, call = std::size_t{0}](const SystemCall& system_call) mutable {
            return call++ == i ? RulingOf(error, system_call) : Ruling();
          },
          std::make_shared<bool>(false), &refused);
    }
    if (HasFailure()) break;
  }
  std::printf("%zu calls, %d failures: %d reported\n", calls.size(), trials, refused);
  EXPECT_GT(refused, 0);
}

TEST(InterruptedWriterTest, DiskThatFillsIsAnErrorAndNoLoss) {
  const kestan_tests::TempDir folder;
  const InterruptedWriter writer(folder / ".");
  const std::vector<Function> calls = writer.Calls();
  int trials = 0;
  int refused = 0;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (calls[i] != Function::kWrite && calls[i] != Function::kTruncate) continue;
    SCOPED_TRACE("from call " + std::to_string(i) + " on");
    ++trials;
    const auto is_over = std::make_shared<bool>(false);
    CheckFault(
        writer,
        [i, is_over, call = std::size_t{0}](const SystemCall& system_call) mutable {
          const bool needs_room = system_call.function == Function::kWrite ||
                                  system_call.function == Function::kTruncate;
          return call++ >= i && needs_room && !*is_over ? Ruling{ENOSPC} : Ruling();
        },
        is_over, &refused);
    if (HasFailure()) break;
  }
  std::printf("%d full disks: %d reported\n", trials, refused);
  EXPECT_GT(refused, 0);
}

}  // namespace
}  // namespace kestan_faults
