// SPDX-License-Identifier: GPL-3.0-or-later
// Each allocation fails of what makes a new index of another one, checks and dumps it.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <string>
#include <string_view>

#include "tests/faults/search/failing_allocations.h"
#include "tests/faults/search/upkeep_work.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

using kestan::search::Status;

void Note(const Status& status, Transcript* transcript) {
  if (!status.ok()) transcript->Add("refused", static_cast<long>(status.code()));
}

TEST(UpkeepAllocationsTest, FailingAllocationLeavesNoneOrAWholeIndex) {
  const kestan_tests::TempDir folder;
  const UpkeepWork work(folder / ".");
  for (const UpkeepTask& task : work.tasks()) {
    SCOPED_TRACE(task.name);
    ExpectFailingAllocationsAreErrors(
        [&] { work.RemoveTarget(); }, [&](Transcript* transcript) { Note(task.run(), transcript); },
        [&](const Trial& trial) { work.Check(task, Has(trial, "refused")); });
    if (HasFailure()) return;
  }
}

TEST(UpkeepAllocationsTest, FailingAllocationOfAQuestionIsAnError) {
  const kestan_tests::TempDir folder;
  const UpkeepWork work(folder / ".");
  const std::string index = folder / "./index";
  ExpectFailingAllocationsAreErrors([] {},
                                    [&](Transcript* transcript) {
                                      // Records that gdbm has no memory for may look like faults.
                                      Note(kestan::search::CheckIndex(index).status(), transcript);
                                    },
                                    [](const Trial&) {});
  ExpectFailingAllocationsAreErrors([] {},
                                    [&](Transcript* transcript) {
                                      const auto measure = kestan::search::MeasureCompaction(index);
                                      Note(measure.status(), transcript);
                                      if (measure.ok())
                                        transcript->Add("bytes",
                                                        static_cast<long>(measure->bytes_after));
                                    },
                                    [](const Trial&) {});
  ExpectFailingAllocationsAreErrors(
      [] {},
      [&](Transcript* transcript) {
        long lines = 0;
        Note(kestan::search::DumpIndex(index, [&lines](std::string_view) { return ++lines > 0; }),
             transcript);
      },
      [](const Trial&) {});
}

}  // namespace
}  // namespace kestan_faults
