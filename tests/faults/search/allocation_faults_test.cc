// Each allocation of a writer and of a reader fails, once or with all later ones. There is an
// error, or the library ends the process with one line; the index is the old one or the new one.
//
// In the environment, KESTAN_FAULTS_ALL=1 tries every allocation; by default some hundreds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <string>

#include "tests/faults/allocation_trial.h"
#include "tests/faults/search/asked_index.h"
#include "tests/faults/search/interrupted_writer.h"
#include "tests/support/environment.h"
#include "tests/support/temp_dir.h"

namespace kestan_faults {
namespace {

constexpr long kTrials = 150;

long StrideFor(long allocations) {
  const bool tries_all = kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_ALL", 0) != 0;
  return tries_all ? 1 : std::max(1L, allocations / kTrials);
}

bool Has(const Trial& trial, const char* line) {
  return ("\n" + trial.outcome.transcript).find("\n" + std::string(line) + ": ") !=
         std::string::npos;
}

// Expects that the process ended by itself, with status 0 or as one that lacks memory.
void ExpectDocumentedEnd(const Trial& trial) {
  ASSERT_TRUE(trial.outcome.ended) << Describe(trial);
  if (trial.outcome.exit_status == 0) return;
  std::string message = trial.outcome.standard_error;
  if (!message.empty() && message.back() == '\n') message.pop_back();
  ExpectEndWithoutMemory(message, trial);
}

class Counts {
 public:
  void Note(const Trial& trial) {
    ++trials_;
    ended_ += trial.outcome.exit_status != 0 ? 1 : 0;
    refused_ += Has(trial, "refused") ? 1 : 0;
  }

  void Print(long allocations) const {
    std::printf("%ld allocations, %d failed: %d reported, %d ended the process\n", allocations,
                trials_, refused_, ended_);
    std::fflush(stdout);  // children would print it again
  }

  int refused() const { return refused_; }

 private:
  int trials_ = 0;
  int refused_ = 0;
  int ended_ = 0;
};

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
  Counts counts;
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

// Asks a reader in ways that allocate in every part of a search.
void AskReader(const std::string& index, Transcript* transcript) {
  const auto note = [transcript](const kestan::search::Status& status) {
    if (!status.ok()) transcript->Add("refused", status.ToString());
  };
  const auto reader = kestan::search::IndexReader::Open(index);
  if (!reader.ok()) return note(reader.status());
  const auto found = reader->Search("common \"cold river\" ba* rivre~ NOT missing");
  note(found.status());
  const auto count = reader->Count("common");
  note(count.status());
  if (count.ok()) transcript->Add("count", static_cast<long>(*count));
  note(reader->Terms("").status());
  const auto one = reader->FindDocument("moved");
  note(one.status());
  if (one.ok()) transcript->Add("title", one->title);
}

TEST(ReaderAllocationFaultsTest, FailingAllocationIsAnError) {
  const kestan_tests::TempDir folder;
  const std::string index = folder / "index";
  MakeIndex(index);
  for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
    const auto run = [&](long nth) {
      return RunWithFault(nth, failing,
                          [&](Transcript* transcript) { AskReader(index, transcript); });
    };
    const Trial whole = run(0);
    Counts counts;
    const long stride = StrideFor(whole.log.calls);
    for (long nth = 1; nth <= whole.log.calls && !HasFailure(); nth += stride) {
      const Trial trial = run(nth);
      ExpectDocumentedEnd(trial);
      counts.Note(trial);
      if (Has(trial, "refused") || trial.outcome.exit_status != 0) continue;
      EXPECT_EQ(trial.outcome.transcript, whole.outcome.transcript) << Describe(trial);
    }
    counts.Print(whole.log.calls);
    EXPECT_GT(counts.refused(), 0);
  }
}

}  // namespace
}  // namespace kestan_faults
