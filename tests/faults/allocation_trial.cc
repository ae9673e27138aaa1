// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/allocation_trial.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <sstream>

#include "tests/faults/gdbm_fault_messages.h"
#include "tests/faults/shared.h"
#include "tests/support/out_of_memory.h"

namespace kestan_faults {
namespace {

int CountDescriptors() {
  constexpr int kHighest = 64;
  int count = 0;
  for (int i = 0; i < kHighest; ++i) count += fcntl(i, F_GETFD) != -1 ? 1 : 0;
  return count;
}

}  // namespace

Trial RunWithFault(long nth, Failing failing, const std::function<void(Transcript*)>& session) {
  Shared<AllocationLog> log;
  Trial trial;
  trial.nth = nth;
  trial.outcome = RunInChild([&](Transcript* transcript) {
    const int before = CountDescriptors();
    FailAllocations(nth, failing, log.get());
    session(transcript);
    StopFailing();
    transcript->Add("descriptors left", CountDescriptors() - before);
  });
  trial.log = *log.get();
  return trial;
}

std::string Describe(const Trial& trial) {
  std::ostringstream text;
  text << "allocation " << trial.nth << ", failed in gdbm: " << trial.log.failed_in_gdbm
       << ", elsewhere: " << trial.log.failed_elsewhere << "\n"
       << Describe(trial.outcome);
  return text.str();
}

void ExpectPromisedMessages(const std::vector<std::string>& messages, const Trial& trial) {
  EXPECT_TRUE(trial.log.failed_in_gdbm > 0 || messages.empty()) << Describe(trial);
  for (const std::string& message : messages) {
    EXPECT_TRUE(IsPromised(message)) << message << "\n" << Describe(trial);
  }
}

void ExpectEndWithoutMemory(const std::string& message, const Trial& trial) {
  EXPECT_EQ(trial.outcome.exit_status, ENOMEM) << Describe(trial);
  const std::string start = "Kestan: could not allocate ";
  ASSERT_EQ(message.substr(0, start.size()), start) << Describe(trial);
  const std::size_t bytes = std::stoul(message.substr(start.size()));
  EXPECT_EQ(message + "\n", kestan_tests::NoMemoryLine(bytes)) << Describe(trial);
  const std::size_t asked_for = std::max<std::size_t>(bytes, 1);  // malloc(0) may return null
  EXPECT_TRUE(trial.log.HasFailed(asked_for)) << Describe(trial);
}

}  // namespace kestan_faults
