// SPDX-License-Identifier: GPL-3.0-or-later
// No memory, at each allocation of a session in turn: once, and from there on.
//
// An allocation of the engine's ends the process with one line and ENOMEM; one of gdbm's comes back
// as gdbm's error, and the session goes on.
#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <filesystem>
#include <iostream>
#include <regex>
#include <string>
#include <vector>

#include "tests/faults/allocation_trial.h"
#include "tests/faults/gdbm_fault_messages.h"
#include "tests/support/index_test.h"

namespace kestan_faults {
namespace {

// How a session went in which an allocation failed, and what can be read of its index afterwards.
struct SessionTrial : Trial {
  Outcome afterwards;
  bool has_index = false;
};

// Reads the index in a process of its own, where gdbm may trip over what it wrote itself. A file
// that gdbm has left empty is like none: only one who may write can open it.
Outcome List(const std::string& index) {
  const int mode = std::filesystem::is_empty(index) ? 1 : 0;
  return RunInChild([&](Transcript* transcript) {
    Kestan engine;
    transcript->Add("open", engine.OpenIndex(index.c_str(), mode));
    if (transcript->text() == "open: 0\n") transcript->Add("list", engine.ListDocuments());
  });
}

SessionTrial RunSessionWithFault(long nth, Failing failing) {
  const kestan_tests::TempDir folder;
  const SessionFiles files{folder / "index", folder / "copy"};
  SessionTrial trial;
  static_cast<Trial&>(trial) =
      RunWithFault(nth, failing, [&](Transcript* transcript) { RunSession(files, transcript); });
  trial.has_index = std::filesystem::exists(files.index);
  if (trial.has_index) trial.afterwards = List(files.index);
  return trial;
}

std::string Describe(const SessionTrial& trial) {
  return Describe(static_cast<const Trial&>(trial)) + "\nafterwards: " + Describe(trial.afterwards);
}

// How many sessions ended in each of the expected ways.
struct EndCounts {
  long no_memory = 0;   // with the line of the engine
  long no_counter = 0;  // gdbm could not read the code counter, and a complement needs it
  long went_on = 0;     // gdbm's error was one to go on with
  long fell_back = 0;   // the engine did without the memory
  long unreadable = 0;  // gdbm cannot open the index afterwards
};

// Checks a session that ended before its end, by its last message.
void CheckEarlyEnd(const SessionTrial& trial, EndCounts* counts) {
  std::vector<std::string> messages = Messages(trial.outcome.standard_error);
  ASSERT_FALSE(messages.empty()) << Describe(trial);
  const std::string last = messages.back();
  messages.pop_back();
  ExpectPromisedMessages(messages, trial);
  if (IsPromisedEnd(last)) {
    EXPECT_EQ(trial.outcome.exit_status, 1) << Describe(trial);
    EXPECT_GT(trial.log.failed_in_gdbm, 0) << Describe(trial);
    ++counts->no_counter;
  } else {
    ExpectEndWithoutMemory(last, trial);
    ++counts->no_memory;
  }
}

// Checks a session that came to its end.
void CheckWholeSession(const SessionTrial& trial, const std::string& undisturbed,
                       EndCounts* counts) {
  EXPECT_TRUE(trial.outcome.transcript.find("close again: 0\ndescriptors left: 0\n") !=
              std::string::npos)
      << Describe(trial);
  ExpectPromisedMessages(Messages(trial.outcome.standard_error), trial);
  if (trial.log.failed_elsewhere == 0) {
    ++counts->went_on;
    return;
  }
  // Sorting is faster with more memory, and what grows asks for more than it needs. Both
  // do without. Nothing else does.
  EXPECT_EQ(trial.log.failed_in_gdbm, 0) << Describe(trial);
  EXPECT_EQ(trial.outcome.transcript, undisturbed) << Describe(trial);
  ++counts->fell_back;
}

// Returns whether every line of a listing of documents is a name that the session uses.
bool AreNamesOfTheSession(const std::string& listing) {
  const std::regex names("(([a-f]\\.txt|moved\\.txt|more[0-4])\n)*\n?");
  return std::regex_match(listing, names);
}

// The index must be one that gdbm reads, unless gdbm itself was hindered in writing it.
void CheckIndex(const SessionTrial& trial, EndCounts* counts) {
  if (!trial.has_index) return;
  EXPECT_TRUE(trial.afterwards.ended) << Describe(trial);
  EXPECT_EQ(trial.afterwards.exit_status, 0) << Describe(trial);
  EXPECT_EQ(trial.afterwards.standard_error, "") << Describe(trial);
  const std::string& listed = trial.afterwards.transcript;
  const std::string start = "open: 0\nlist: ";
  if (listed.substr(0, start.size()) == start) {
    EXPECT_TRUE(AreNamesOfTheSession(listed.substr(start.size()))) << Describe(trial);
  } else {
    EXPECT_GT(trial.log.failed_in_gdbm, 0) << Describe(trial);
    ++counts->unreadable;
  }
}

void Check(const SessionTrial& trial, const std::string& undisturbed, EndCounts* counts) {
  EXPECT_TRUE(trial.outcome.ended) << Describe(trial);
  EXPECT_EQ(trial.outcome.signal, 0) << Describe(trial);
  if (trial.outcome.exit_status == 0) {
    CheckWholeSession(trial, undisturbed, counts);
  } else {
    CheckEarlyEnd(trial, counts);
  }
  CheckIndex(trial, counts);
}

// Makes the first allocation of a session fail, then the second of another, and so on until a
// session has fewer.
void FailEach(Failing failing) {
  const SessionTrial undisturbed = RunSessionWithFault(0, failing);
  ASSERT_EQ(undisturbed.outcome.exit_status, 0);
  ASSERT_GT(undisturbed.log.calls, 0);
  EndCounts counts;
  for (long nth = 1;; ++nth) {
    const SessionTrial trial = RunSessionWithFault(nth, failing);
    if (trial.log.calls < nth) break;
    Check(trial, undisturbed.outcome.transcript, &counts);
    if (testing::Test::HasFailure()) return;
  }
  std::cout << undisturbed.log.calls << " allocations; " << counts.no_memory
            << " sessions ended for lack of memory, " << counts.no_counter
            << " for lack of the code counter; " << counts.went_on << " went on without gdbm's, "
            << counts.fell_back << " without the engine's; " << counts.unreadable
            << " left an index that does not open\n";
}

}  // namespace

TEST(AllocationFaultsTest, ReachGdbmAndTheEngine) {
  EXPECT_GT(RunSessionWithFault(1, Failing::kOnce).log.failed_elsewhere, 0);
  long in_gdbm = 0;
  for (long nth = 1; nth < 100 && in_gdbm == 0; ++nth) {
    in_gdbm = RunSessionWithFault(nth, Failing::kOnce).log.failed_in_gdbm;
  }
  EXPECT_GT(in_gdbm, 0);
}

TEST(AllocationFaultsTest, OneAllocationFails) { FailEach(Failing::kOnce); }

TEST(AllocationFaultsTest, EveryAllocationFromOneOnFails) { FailEach(Failing::kFromThenOn); }

}  // namespace kestan_faults
