// SPDX-License-Identifier: GPL-3.0-or-later
// Each system call that gdbm makes for the files of the session fails, once or from then on, or
// moves half of its bytes. The session must end as the engine promises, with every descriptor
// closed, and what it leaves must open, or fail to open with an error.
//
// By default each call gets one kind of failure, the kinds taking turns. In the environment,
//   KESTAN_FAULTS_ALL=1     gives each call every kind of failure (minutes);
//   KESTAN_FAULTS_STRIDE=N  passes over all but every Nth case.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/kill_aftermath.h"
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

constexpr int kShort = 0;           // in place of an error: half of the bytes are moved
constexpr int kEndlessStatus = 99;  // of a process that repeats a failing call without end
constexpr long kEndlessCalls = 20'000;

struct Fault {
  std::size_t call;  // counted from 1
  Function function;
  int error;
  bool lasting;  // from then on every call of the function fails
};

std::string Describe(const Fault& fault) {
  const char* const kind = fault.error == kShort ? "half the bytes" : strerrorname_np(fault.error);
  return "call " + std::to_string(fault.call) + ", " + NameOf(fault.function) + ": " + kind +
         (fault.lasting ? " from then on" : " once");
}

// Which errors a function may report.
std::vector<int> ErrorsOf(Function function) {
  switch (function) {
    case Function::kOpen:
    case Function::kClose:
    case Function::kTruncate:
    case Function::kSync:
      return {EIO, ENOSPC, EDQUOT, EINTR};
    case Function::kRead:
      return {EIO, EINTR, kShort};
    case Function::kWrite:
      return {EIO, ENOSPC, EDQUOT, EINTR, kShort};
    case Function::kLock:
      return {EIO, EINTR};
    case Function::kRename:
      return {EIO, ENOSPC, EDQUOT};
    case Function::kMap:
      return {ENOMEM};
    default:
      return {EIO};
  }
}

Ruling RulingFor(const Fault& fault, const SystemCall& call) {
  return fault.error == kShort ? Ruling{0, (call.bytes + 1) / 2} : Ruling{fault.error};
}

CallRule RuleFor(const Fault& fault) {
  return [fault, calls = std::size_t{0}, failed = 0L](const SystemCall& call) mutable -> Ruling {
    ++calls;
    const bool fails = fault.lasting ? calls >= fault.call && call.function == fault.function
                                     : calls == fault.call;
    if (!fails) return {};
    if (++failed > kEndlessCalls) _exit(kEndlessStatus);
    return RulingFor(fault, call);
  };
}

std::vector<Fault> FaultsOf(const std::vector<Function>& calls) {
  const bool all = kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_ALL", 0) != 0;
  std::vector<Fault> faults;
  std::map<Function, std::size_t> turns;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    std::vector<Fault> of_call;
    for (const int error : ErrorsOf(calls[i])) {
      for (const bool lasting : {false, true}) of_call.push_back({i + 1, calls[i], error, lasting});
    }
    const std::size_t turn = turns[calls[i]]++ % of_call.size();
    if (!all) of_call = {of_call[turn]};
    faults.insert(faults.end(), of_call.begin(), of_call.end());
  }
  return faults;
}

// What gdbm 1.23 makes of a failure against the engine's promises.
struct Exception {
  const char* name;
  const char* reason;
  bool (*covers)(const Fault&, const Outcome&);
  int cases = 0;
};

std::array<Exception, 1> KnownExceptions() {
  return {{{"a read or write that is interrupted for ever",
            "gdbm repeats it until it is not; a system interrupts a call only for a signal",
            [](const Fault& fault, const Outcome& outcome) {
              return fault.error == EINTR && fault.lasting && outcome.exit_status == kEndlessStatus;
            }}}};
}

class Counts {
 public:
  // Checks how the session under `fault` ended and what it left.
  void Check(const Fault& fault, const Outcome& outcome, const Aftermath& left) {
    ++trials_;
    opened_ += left.found.IsOpen() ? 1 : 0;
    whole_ += left.found.IsWhole() ? 1 : 0;
    EXPECT_TRUE(EndedAsPromised(left.outcome))
        << Describe(fault) << ", afterwards: " << Describe(left.outcome);
    if (IsKnown(fault, outcome)) return;
    EXPECT_TRUE(EndedAsPromised(outcome)) << Describe(fault) << ": " << Describe(outcome);
    if (outcome.exit_status == 0) {
      EXPECT_EQ(kestan_faults::NumberIn(outcome.transcript, "files left open"), 0)
          << Describe(fault);
    }
  }

  void Print() const {
    std::printf("%d failures: %d indexes opened afterwards, %d with every document\n", trials_,
                opened_, whole_);
    for (const Exception& exception : exceptions_) {
      std::printf("known exception, %d cases: %s (%s)\n", exception.cases, exception.name,
                  exception.reason);
    }
  }

 private:
  bool IsKnown(const Fault& fault, const Outcome& outcome) {
    for (Exception& exception : exceptions_) {
      if (!exception.covers(fault, outcome)) continue;
      ++exception.cases;
      return true;
    }
    return false;
  }

  int trials_ = 0;
  int opened_ = 0;
  int whole_ = 0;
  std::array<Exception, 1> exceptions_ = KnownExceptions();
};

void PrintCalls(const std::vector<Function>& calls) {
  std::map<Function, int> counts;
  for (const Function function : calls) ++counts[function];
  for (const auto& [function, count] : counts) std::printf("%s %d, ", NameOf(function), count);
  std::printf("together %zu calls\n", calls.size());
}

TEST(SystemCallWatchTest, StandsBeforeEveryWrite) {
  const kestan_tests::TempDir folder;
  const std::string files = folder / "files";
  const Outcome outcome = kestan_faults::RunWatchedSession(files, [](const SystemCall& call) {
    return call.function == Function::kWrite ? Ruling{ENOSPC} : Ruling{};
  });
  EXPECT_TRUE(EndedAsPromised(outcome)) << Describe(outcome);
  for (const auto& file : std::filesystem::directory_iterator(files)) {
    EXPECT_EQ(file.file_size(), 0u) << file.path();
  }
}

TEST(SystemCallFaultTest, LeavesTheEngineAliveAndItsPromisesKept) {
  const kestan_tests::TempDir folder;
  const std::string files = folder / "files";
  const std::vector<Function> calls = kestan_faults::CallsOfSession(files);
  const std::vector<Fault> faults = FaultsOf(calls);
  const auto stride =
      static_cast<std::size_t>(kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_STRIDE", 1));
  Counts counts;
  for (std::size_t i = 0; i < faults.size(); i += stride) {
    const Outcome outcome = RunWatchedSession(files, RuleFor(faults[i]));
    counts.Check(faults[i], outcome,
                 Examine(kestan_faults::IndexIn(files), kestan_faults::SessionReference()));
  }
  PrintCalls(calls);
  counts.Print();
}

}  // namespace
