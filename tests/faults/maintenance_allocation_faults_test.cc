// SPDX-License-Identifier: GPL-3.0-or-later
// No memory, at each allocation of a session that looks after index files: once, and from there on.
//
// An allocation of the library's ends the process as it does in the engine. One of gdbm's comes
// back as an error, and what is reported as done is done whole.
#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

#include "tests/faults/allocation_trial.h"
#include "tests/faults/gdbm_fault_messages.h"
#include "tests/faults/maintenance_session.h"

namespace kestan_faults {
namespace {

void CheckEarlyEnd(const Trial& trial) {
  std::vector<std::string> messages = Messages(trial.outcome.standard_error);
  ASSERT_FALSE(messages.empty()) << Describe(trial);
  const std::string last = messages.back();
  messages.pop_back();
  ExpectPromisedMessages(messages, trial);
  ExpectEndWithoutMemory(last, trial);
}

void CheckWholeSession(const MaintenanceFiles& files, const Trial& trial) {
  files.Check(trial.outcome.transcript);
  EXPECT_NE(trial.outcome.transcript.find("\ndescriptors left: 0\n"), std::string::npos);
  ExpectPromisedMessages(Messages(trial.outcome.standard_error), trial);
}

// Makes the first allocation of a session fail, then the second of another, and so on until a
// session has fewer.
void FailEach(Failing failing) {
  const MaintenanceFiles files;
  const auto session = [&](Transcript* transcript) { files.Run(transcript); };
  long went_on = 0;
  long nth = 1;
  for (;; ++nth) {
    const Trial trial = RunWithFault(nth, failing, session);
    if (trial.log.calls < nth) break;
    EXPECT_TRUE(trial.outcome.ended);
    EXPECT_EQ(trial.outcome.signal, 0);
    if (trial.outcome.exit_status == 0) {
      ++went_on;
      CheckWholeSession(files, trial);
    } else {
      CheckEarlyEnd(trial);
    }
    if (testing::Test::HasFailure()) FAIL() << Describe(trial);
    files.Clean();
  }
  EXPECT_GT(nth, went_on);
  std::cout << nth - 1 << " allocations; " << went_on << " sessions went on without\n";
}

TEST(MaintenanceAllocationFaultsTest, OneAllocationFails) { FailEach(Failing::kOnce); }

TEST(MaintenanceAllocationFaultsTest, EveryAllocationFromOneOnFails) {
  FailEach(Failing::kFromThenOn);
}

}  // namespace
}  // namespace kestan_faults
