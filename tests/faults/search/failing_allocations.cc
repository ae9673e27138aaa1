// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/search/failing_allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "tests/support/environment.h"

namespace kestan_faults {
namespace {

constexpr long kTrials = 150;

}  // namespace

long StrideFor(long allocations) {
  const bool tries_all = kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_ALL", 0) != 0;
  return tries_all ? 1 : std::max(1L, allocations / kTrials);
}

bool Has(const Trial& trial, const char* line) {
  return ("\n" + trial.outcome.transcript).find("\n" + std::string(line) + ": ") !=
         std::string::npos;
}

void ExpectDocumentedEnd(const Trial& trial) {
  ASSERT_TRUE(trial.outcome.ended) << Describe(trial);
  if (trial.outcome.exit_status == 0) return;
  std::string message = trial.outcome.standard_error;
  if (!message.empty() && message.back() == '\n') message.pop_back();
  ExpectEndWithoutMemory(message, trial);
}

void AllocationFaultCounts::Note(const Trial& trial) {
  ++trials_;
  ended_ += trial.outcome.exit_status != 0 ? 1 : 0;
  refused_ += Has(trial, "refused") ? 1 : 0;
}

void AllocationFaultCounts::Print(long allocations) const {
  std::printf("%ld allocations, %d failed: %d reported, %d ended the process\n", allocations,
              trials_, refused_, ended_);
  std::fflush(stdout);  // children would print it again
}

void ExpectFailingAllocationsAreErrors(const std::function<void()>& prepare,
                                       const std::function<void(Transcript*)>& work,
                                       const std::function<void(const Trial&)>& check) {
  for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
    const auto run = [&](long nth) {
      prepare();
      return RunWithFault(nth, failing, work);
    };
    const Trial whole = run(0);
    ASSERT_EQ(whole.outcome.exit_status, 0) << Describe(whole);
    ASSERT_FALSE(Has(whole, "refused")) << Describe(whole);
    AllocationFaultCounts counts;
    const long stride = StrideFor(whole.log.calls);
    for (long nth = 1; nth <= whole.log.calls && !testing::Test::HasFailure(); nth += stride) {
      const Trial trial = run(nth);
      SCOPED_TRACE("allocation " + std::to_string(nth));
      ExpectDocumentedEnd(trial);
      counts.Note(trial);
      check(trial);
      if (Has(trial, "refused") || trial.outcome.exit_status != 0) continue;
      EXPECT_EQ(trial.outcome.transcript, whole.outcome.transcript) << Describe(trial);
    }
    counts.Print(whole.log.calls);
    EXPECT_GT(counts.refused(), 0);
  }
}

}  // namespace kestan_faults
