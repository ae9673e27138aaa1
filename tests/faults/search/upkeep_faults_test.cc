// SPDX-License-Identifier: GPL-3.0-or-later
// What makes a new index of another one, killed before each of its system calls, with each of its
// calls failing, and on a disk that is full from each write on: the other index stays as it is, and
// there is no new one or a whole one. Another try removes what is left.
//
// In the environment, KESTAN_FAULTS_STRIDE=N passes over all but every Nth call but for the full
// disk.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/faults/call_log.h"
#include "tests/faults/child.h"
#include "tests/faults/search/upkeep_work.h"
#include "tests/faults/shared.h"
#include "tests/faults/system_call_watch.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

class UpkeepFaultsTest : public testing::Test {
 protected:
  Outcome Run(const UpkeepTask& task, const CallRule& rule) const {
    work_.RemoveTarget();
    return RunInChild([&](Transcript* transcript) {
      WatchCalls(work_.folder(), rule);
      const auto status = task.run();
      transcript->Add(status.ok() ? "done" : "refused", status.ToString());
    });
  }

  std::vector<Function> CallsOf(const UpkeepTask& task) const {
    const Shared<CallLog> shared;
    CallLog* const log = shared.get();
    const Outcome outcome = Run(task, [log](const SystemCall& call) -> Ruling {
      log->functions.at(log->count++) = call.function;
      return {};
    });
    EXPECT_NE(outcome.transcript.find("done"), std::string::npos) << Describe(outcome);
    EXPECT_TRUE(work_.Check(task)) << task.name;
    work_.CheckNothingIsLeft();
    return {log->functions.begin(),
            log->functions.begin() + static_cast<std::ptrdiff_t>(log->count)};
  }

  // Checks what a run has left, and that the next one is not in its way.
  void CheckAfter(const UpkeepTask& task, bool is_done, bool is_killed) const {
    EXPECT_TRUE(work_.Check(task, !is_done && !is_killed) || !is_done);
    work_.RemoveTarget();
    const auto status = task.run();
    EXPECT_TRUE(status.ok()) << status.ToString();
    EXPECT_TRUE(work_.Check(task));
    work_.CheckNothingIsLeft();
  }

  // Has a call fail, or several.
  void CheckFailure(const UpkeepTask& task, const CallRule& rule) {
    const Outcome outcome = Run(task, rule);
    ASSERT_TRUE(outcome.ended && outcome.exit_status == 0) << Describe(outcome);
    EXPECT_EQ(outcome.standard_error, "");
    const bool is_done = outcome.transcript.find("done") != std::string::npos;
    refused_ += is_done ? 0 : 1;
    CheckAfter(task, is_done, false);
  }

  // Returns whether it is the turn of a call.
  bool IsTaken() { return passed_++ % stride_ == 0; }

  const kestan_tests::TempDir dir_;
  const UpkeepWork work_{dir_ / "."};
  int refused_ = 0;

 private:
  const int stride_ = kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_STRIDE", 1);
  int passed_ = 0;
};

TEST_F(UpkeepFaultsTest, KilledBeforeSystemCallLeavesNoneOrAWholeIndex) {
  for (const UpkeepTask& task : work_.tasks()) {
    const std::vector<Function> calls = CallsOf(task);
    int killed = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
      const bool changes = IsWriteLike(calls[i]) || calls[i] == Function::kRemove ||
                           calls[i] == Function::kOpen || calls[i] == Function::kMode;
      if (!changes || !IsTaken()) continue;
      SCOPED_TRACE(task.name + ": call " + std::to_string(i) + " " + NameOf(calls[i]));
      const Outcome outcome = Run(task, [i, call = std::size_t{0}](const SystemCall&) mutable {
        if (call++ == i) raise(SIGKILL);
        return Ruling();
      });
      ASSERT_EQ(outcome.signal, SIGKILL) << Describe(outcome);
      ++killed;
      CheckAfter(task, false, true);
      if (HasFailure()) return;
    }
    std::printf("%s: %zu calls, %d kills\n", task.name.c_str(), calls.size(), killed);
    std::fflush(stdout);  // children would print it again
    EXPECT_GT(killed, 0);
  }
}

TEST_F(UpkeepFaultsTest, FailingSystemCallIsAnErrorOrNoMatter) {
  for (const UpkeepTask& task : work_.tasks()) {
    const std::vector<Function> calls = CallsOf(task);
    int failed = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
      if (!IsTaken()) continue;
      ++failed;
      const int error = calls[i] == Function::kMap ? ENOMEM : i % 2 == 0 ? EIO : ENOSPC;
      SCOPED_TRACE(task.name + ": call " + std::to_string(i) + " " + NameOf(calls[i]));
      CheckFailure(task, [i, error, call = std::size_t{0}](const SystemCall&) mutable {
        return call++ == i ? Ruling{error} : Ruling();
      });
      if (HasFailure()) return;
    }
    std::printf("%s: %d of %zu calls failed, %d reported\n", task.name.c_str(), failed,
                calls.size(), refused_);
    std::fflush(stdout);  // children would print it again
    EXPECT_GT(refused_, 0);
    refused_ = 0;
  }
}

TEST_F(UpkeepFaultsTest, FullDiskIsAnError) {
  for (const UpkeepTask& task : work_.tasks()) {
    const std::vector<Function> calls = CallsOf(task);
    for (std::size_t i = 0; i < calls.size(); ++i) {
      if (calls[i] != Function::kWrite) continue;
      SCOPED_TRACE(task.name + ": full from call " + std::to_string(i) + " on");
      CheckFailure(task, [i, call = std::size_t{0}](const SystemCall& system_call) mutable {
        const bool needs_room = system_call.function == Function::kWrite;
        return call++ >= i && needs_room ? Ruling{ENOSPC} : Ruling();
      });
      if (HasFailure()) return;
    }
    EXPECT_GT(refused_, 0) << task.name;
    refused_ = 0;
  }
}

}  // namespace
}  // namespace kestan_faults
