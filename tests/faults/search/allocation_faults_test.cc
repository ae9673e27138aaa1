// SPDX-License-Identifier: GPL-3.0-or-later
// Each allocation of a writer fails, once or with all later ones. There is an error, or the library
// ends the process with one line; the index is the old one or the new one.
//
// In the environment, KESTAN_FAULTS_ALL=1 tries every allocation; by default some hundreds.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/faults/search/failing_allocations.h"
#include "tests/faults/search/interrupted_writer.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

class WriterAllocationFaultsTest : public testing::TestWithParam<Failing> {};

TEST_P(WriterAllocationFaultsTest, FailingAllocationLosesNoIndex) {
  const kestan_tests::TempDir folder;
  const InterruptedWriter writer(folder / ".");
  const auto run = [&](long nth) {
    writer.CopyIndex();
    return RunWithFault(nth, GetParam(), [&](Transcript* transcript) {
      bool is_over = false;
      if (GetParam() == Failing::kOnce) return writer.WorkAndRecover(&is_over, transcript);
      try {
        writer.Work(transcript);
      } catch (const std::bad_alloc&) {  // the test needs memory too, and has none
      }
    });
  };
  const long allocations = run(0).log.calls;
  AllocationFaultCounts counts;
  const long stride = StrideFor(allocations);
  for (long nth = 1; nth <= allocations && !HasFailure(); nth += stride) {
    const Trial trial = run(nth);
    SCOPED_TRACE("allocation " + std::to_string(nth));
    ExpectDocumentedEnd(trial);
    counts.Note(trial);
    const bool goes_on = GetParam() == Failing::kOnce && trial.outcome.exit_status == 0;
    EXPECT_EQ(Has(trial, "later"), goes_on) << Describe(trial);
    writer.Check(Has(trial, "committed"), goes_on);
  }
  counts.Print(allocations);
  if (GetParam() == Failing::kOnce) {
    EXPECT_GT(counts.refused(), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(OnceAndFromThenOn, WriterAllocationFaultsTest,
                         testing::Values(Failing::kOnce, Failing::kFromThenOn));

}  // namespace
}  // namespace kestan_faults
