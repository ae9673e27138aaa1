// SPDX-License-Identifier: GPL-3.0-or-later
// A process is killed while it works with an index. What it leaves must open, or fail to open with
// an error.
//
// gdbm 1.23 writes a record, then the buckets, the directory, and last the header, and lets nobody
// but gdbm_recover at a file that is longer than its header says. So a kill inside a store that
// lengthens the file leaves an index that does not open; anywhere else it leaves every flushed
// document. Flag 1 is stored before the positions are dropped, by the next flush: a kill in between
// leaves wrong answers. Changes of a mapped file are no calls; only random moments meet them.
//
// In the environment,
//   KESTAN_KILL_TRIALS=N    kills the longer session at N random moments instead of 200;
//   KESTAN_FAULTS_STRIDE=N  passes over all but every Nth call of the scripted session.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/faults/kill_aftermath.h"
#include "tests/faults/kill_session.h"
#include "tests/faults/system_call_session.h"
#include "tests/support/environment.h"
#include "tests/support/index_test.h"

namespace {

using kestan_faults::Aftermath;
using kestan_faults::CallRule;
using kestan_faults::Function;
using kestan_faults::Outcome;
using kestan_faults::Ruling;
using kestan_faults::SystemCall;

struct Counts {
  int trials = 0;
  int flushed = 0;   // killed after the first flush; of these:
  int opened = 0;    // the index opened to read
  int refused = 0;   // it did not, for gdbm asked for gdbm_recover
  int listed = 0;    // it listed every flushed document
  int answered = 0;  // and answered every query as before
  int later = 0;     // and did both after more documents were added
  int repaired = 0;  // it did not at first, but after gdbm_recover
};

void Print(const char* title, const Counts& counts) {
  std::printf(
      "%s: %d trials, %d killed after a flush; of these %d opened, %d needed recovery, %d "
      "listed all flushed documents, %d answered all reference queries, %d did both after "
      "more additions; gdbm_recover repaired %d\n",
      title, counts.trials, counts.flushed, counts.opened, counts.refused, counts.listed,
      counts.answered, counts.later, counts.repaired);
  std::fflush(stdout);  // or the next children would print it again
}

void Count(const Aftermath& left, Counts* counts) {
  ++counts->flushed;
  counts->opened += left.found.IsOpen() ? 1 : 0;
  counts->refused += left.needs_recovery ? 1 : 0;
  counts->listed += left.found.missing == 0 ? 1 : 0;
  counts->answered += left.found.IsWhole() ? 1 : 0;
  counts->later += left.found.IsWhole() && left.later.IsWhole() ? 1 : 0;
  counts->repaired += left.repaired.IsWhole() ? 1 : 0;
}

// Kills the process before its nth call of a function that changes files or syncs them.
CallRule KillBefore(std::size_t nth) {
  return [nth, calls = std::size_t{0}](const SystemCall& call) mutable -> Ruling {
    if (IsWriteLike(call.function) && ++calls == nth) raise(SIGKILL);
    return {};
  };
}

std::vector<Function> WriteLikeCalls(const std::string& files) {
  std::vector<Function> calls;
  for (const Function function : kestan_faults::CallsOfSession(files)) {
    if (IsWriteLike(function)) calls.push_back(function);
  }
  return calls;
}

// Checks what the scripted session left when it was killed before a call of `function`.
void Check(const Outcome& outcome, Function function, const Aftermath& left) {
  EXPECT_TRUE(left.found.IsOpen() || left.needs_recovery) << Describe(left.outcome);
  EXPECT_TRUE(left.found.IsOpen() || function == Function::kWrite) << NameOf(function);
  EXPECT_LE(left.found.missing, 0) << Describe(left.outcome);
  const bool drops_positions = outcome.transcript.find("\nunset flag 4: ") != std::string::npos;
  EXPECT_TRUE(left.found.wrong <= 0 || drops_positions) << Describe(left.outcome);
}

TEST(KillTest, BeforeAnyChangeOfAFileLeavesAllDocumentsOrNeedsRecovery) {
  const kestan_tests::TempDir folder;
  const std::string files = folder / "files";
  const std::vector<Function> calls = WriteLikeCalls(files);
  const auto stride =
      static_cast<std::size_t>(kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_STRIDE", 1));
  Counts counts;
  for (std::size_t i = 0; i < calls.size(); i += stride) {
    ++counts.trials;
    const Outcome outcome = RunWatchedSession(files, KillBefore(i + 1));
    EXPECT_EQ(outcome.signal, SIGKILL) << Describe(outcome);
    const Aftermath left =
        Examine(kestan_faults::IndexIn(files), kestan_faults::SessionReference());
    EXPECT_TRUE(EndedAsPromised(left.outcome)) << Describe(left.outcome);
    if (outcome.transcript.find("\nflush: 0") == std::string::npos) continue;
    SCOPED_TRACE("killed before change " + std::to_string(i + 1));
    Check(outcome, calls[i], left);
    Count(left, &counts);
  }
  Print("before each change of a file", counts);
}

// Runs the longer session in `folder`, which is made again.
Outcome RunLongSessionIn(const std::string& folder, long kill_after_us) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directory(folder);
  const std::string index = kestan_faults::IndexIn(folder);
  return kestan_faults::RunInChild(
      [&](kestan_faults::Transcript* transcript) { RunLongSession(index, transcript); },
      kill_after_us);
}

Aftermath ExamineLongSession(const std::string& folder, int rounds) {
  return Examine(kestan_faults::IndexIn(folder), kestan_faults::LongSessionReference(rounds));
}

TEST(KillTest, LongSessionLeavesItsReferenceWhenItEnds) {
  const kestan_tests::TempDir folder;
  const std::string files = folder / "files";
  const Outcome outcome = RunLongSessionIn(files, 0);
  ASSERT_EQ(kestan_faults::RoundsFlushed(outcome.transcript), kestan_faults::kRounds)
      << Describe(outcome);
  const Aftermath left = ExamineLongSession(files, kestan_faults::kRounds);
  EXPECT_TRUE(left.found.IsWhole() && left.later.IsWhole()) << Describe(left.outcome);
}

// Returns how long the longer session takes in microseconds: the shortest of some runs.
long SessionUs(const std::string& folder) {
  using Clock = std::chrono::steady_clock;
  std::vector<long> runs_us;
  for (int run = 0; run < 3; ++run) {
    const Clock::time_point start = Clock::now();
    RunLongSessionIn(folder, 0);
    const auto run_us = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
    runs_us.push_back(static_cast<long>(run_us.count()));
  }
  return *std::min_element(runs_us.begin(), runs_us.end());
}

TEST(KillTest, AtRandomMomentsLeavesAnIndexThatTheEngineSurvives) {
  const kestan_tests::TempDir folder;
  const std::string files = folder / "files";
  // The same moments each time, as far as a moment can be the same.
  std::mt19937 random(20);  // NOLINT(cert-msc32-c,cert-msc51-cpp)
  std::uniform_int_distribution<long> moments(1, SessionUs(files));
  const long trials = kestan_tests::NumberFromEnvironment("KESTAN_KILL_TRIALS", 200);
  Counts counts;
  for (; counts.trials < trials; ++counts.trials) {
    const Outcome outcome = RunLongSessionIn(files, moments(random));
    const int rounds = kestan_faults::RoundsFlushed(outcome.transcript);
    const Aftermath left = ExamineLongSession(files, rounds);
    EXPECT_TRUE(EndedAsPromised(left.outcome)) << Describe(left.outcome);
    if (rounds > 0 && outcome.signal == SIGKILL) Count(left, &counts);
  }
  Print("at random moments", counts);
  EXPECT_GT(counts.flushed, 0);
  EXPECT_GT(counts.answered, counts.flushed * 3 / 4);
}

}  // namespace
