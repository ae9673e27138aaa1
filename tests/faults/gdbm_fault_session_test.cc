// SPDX-License-Identifier: GPL-3.0-or-later
// Each gdbm call of a session fails: once, and from there on.
//
// By default a call fails with the likeliest of its errors. With every error that it may report,
// which takes some minutes:
//
//   KESTAN_FAULT_ERRORS=all ctest --test-dir build/release -R GdbmFaultSession
#include <gdbm.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "tests/faults/child.h"
#include "tests/faults/gdbm_fault_errors.h"
#include "tests/faults/gdbm_fault_messages.h"
#include "tests/faults/session.h"
#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_faults {
namespace {

using kestan_tests::GdbmCall;
using kestan_tests::GdbmWatch;

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// A line of a transcript.
struct Step {
  std::string what;
  std::string result;
};

// Returns the line that begins at `offset`; an empty one at the end.
Step StepAt(const std::string& transcript, std::size_t offset) {
  const std::string line = transcript.substr(offset, transcript.find('\n', offset) - offset);
  const std::size_t colon = line.find(": ");
  if (colon == std::string::npos) return {};
  return {line.substr(0, colon), line.substr(colon + 2)};
}

// A gdbm call of a session in which nothing fails.
struct Call {
  GdbmCall gdbm;
  int nth;                // of the calls of its function
  std::size_t offset;     // of its step in the transcript
  bool is_first_of_step;  // with this function and key
  Step step = {};
};

struct Rehearsal {
  std::vector<Call> calls;
  std::string transcript;
};

// Runs a session in which nothing fails, in this process.
Rehearsal Rehearse() {
  const kestan_tests::TempDir folder;
  const auto transcript = std::make_unique<Transcript>();
  Rehearsal rehearsal;
  GdbmWatch watch;
  watch.Observe([&](const GdbmCall& gdbm) {
    const std::size_t offset = transcript->text().size();
    Call call{gdbm, 1, offset, true};
    call.gdbm.file = std::filesystem::path(gdbm.file).filename();
    for (const Call& earlier : rehearsal.calls) {
      if (earlier.gdbm.function != gdbm.function) continue;
      ++call.nth;
      if (earlier.offset == offset && earlier.gdbm.key == gdbm.key) call.is_first_of_step = false;
    }
    rehearsal.calls.push_back(call);
  });
  RunSession({folder / "index", folder / "copy"}, transcript.get());
  rehearsal.transcript = std::string(transcript->text()) + "files left open: 0\n";
  for (Call& call : rehearsal.calls) call.step = StepAt(rehearsal.transcript, call.offset);
  return rehearsal;
}

// One call that fails.
struct Fault {
  const Call& call;
  int error;
  bool lasting;

  bool IsOf(std::string_view function) const { return call.gdbm.function == function; }
  bool IsIn(std::string_view step) const { return call.step.what == step; }

  // Returns whether a flush makes the call, not a Put.
  bool IsStoreOfFlush() const {
    if (!IsOf("store")) return false;
    if (IsIn("copy")) return call.gdbm.file == "index";
    if (IsIn("shrink")) return call.gdbm.key != "g-avail" || !call.is_first_of_step;
    return IsIn("flush") || IsIn("close") || IsIn("list") || IsIn("common") || IsIn("complement");
  }

  // Returns whether the index stays closed for it.
  bool PreventsOpening() const {
    if (IsOf("open")) return call.gdbm.file == "index";
    const bool is_needed = call.gdbm.key == "g-opts" || call.gdbm.key == "g-avail";
    return IsOf("fetch") && StartsWith(call.step.what, "open") && is_needed &&
           error != GDBM_ITEM_NOT_FOUND;
  }

  // Returns whether the name of the document that the session moves cannot be found for it.
  bool HidesTheMovedName() const {
    if (!StartsWith(call.gdbm.key, "c-")) return false;
    return (IsOf("store") && IsIn("add b")) || (IsOf("fetch") && IsIn("move") && IsMissing());
  }

  // Returns whether gdbm says for it that there is no such record.
  bool IsMissing() const { return error == GDBM_ITEM_NOT_FOUND; }

  // Returns whether a walk notices it. A last key that is missed looks like the end.
  bool IsSeenByWalk() const {
    return IsOf("fetch") || ((IsOf("firstkey") || IsOf("nextkey")) && !IsMissing());
  }

  bool HidesTheCounter() const {
    return IsOf("fetch") && IsIn("complement") && call.gdbm.key == "g-code";
  }
};

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
  return out << fault.call.gdbm.function << " number " << fault.call.nth << " of '"
             << fault.call.gdbm.key << "' in '" << fault.call.step.what
             << "': " << gdbm_strerror(fault.error)
             << (fault.lasting ? ", and all later ones" : "");
}

// Returns what the step must return whose call fails, where that is a number.
std::string ExpectedResult(const Fault& fault) {
  if (fault.IsOf("store") && StartsWith(fault.call.step.what, "put ")) {
    return std::to_string(fault.error);
  }
  if (fault.PreventsOpening() || (fault.IsOf("open") && fault.IsIn("copy"))) return "-1";
  if (fault.IsIn("set flag 1") && fault.IsSeenByWalk()) return "-3";
  if (!fault.IsOf("fetch")) return fault.call.step.result;
  if (fault.IsIn("purge") && !fault.IsMissing()) return std::to_string(fault.error);
  if (fault.IsIn("move")) return fault.IsMissing() ? "-1" : "-2";
  if (StartsWith(fault.call.step.what, "remove") && !fault.IsMissing()) return "-1";
  if (!StartsWith(fault.call.gdbm.key, "d-")) return fault.call.step.result;
  if (fault.IsIn("remove")) return "1";
  return fault.IsIn("has timestamp") ? "0" : fault.call.step.result;
}

// Returns the messages of a session in which this one call fails, and the index can be opened.
std::vector<std::string> ExpectedMessages(const Fault& fault, const std::string& copy) {
  const std::string text = gdbm_strerror(fault.error);
  if (fault.IsStoreOfFlush()) return {CouldNotWrite(fault.call.gdbm.key.c_str(), fault.error)};
  if (fault.IsOf("open")) return {"Kestan: Could not open index file '" + copy + "' -- " + text};
  if (fault.HidesTheMovedName()) {
    return {"Kestan: Could not fetch document for code 2 (oops!)"};
  }
  return {};
}

// The names of the steps, without the one that a session leaves out if it sees no documents.
std::vector<std::string> StepsOf(const std::string& transcript) {
  std::vector<std::string> steps;
  for (std::size_t next = 0; next < transcript.size(); next = transcript.find('\n', next) + 1) {
    const Step step = StepAt(transcript, next);
    if (!step.what.empty() && step.what != "complement") steps.push_back(step.what);
  }
  return steps;
}

bool IsNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("-0123456789") == std::string::npos;
}

// Checks the step whose call failed, and that all before it went as ever.
void CheckStep(const Fault& fault, const Rehearsal& rehearsal, const Outcome& outcome) {
  const std::size_t offset = fault.call.offset;
  EXPECT_EQ(outcome.transcript.substr(0, offset), rehearsal.transcript.substr(0, offset));
  if (!IsNumber(fault.call.step.result)) return;
  EXPECT_EQ(StepAt(outcome.transcript, offset).result, ExpectedResult(fault));
}

void CheckMessages(const Fault& fault, const Outcome& outcome, const std::string& copy) {
  std::vector<std::string> messages = Messages(outcome.standard_error);
  if (outcome.exit_status == 1) {
    ASSERT_FALSE(messages.empty());
    EXPECT_TRUE(IsPromisedEnd(messages.back())) << messages.back();
    messages.pop_back();
  }
  for (const std::string& message : messages) {
    EXPECT_TRUE(IsPromised(message)) << message;
    EXPECT_TRUE(fault.IsOf("store") || !IsOfFlush(message)) << message;
    if (!fault.lasting && fault.PreventsOpening()) {
      EXPECT_TRUE(StartsWith(message, "Kestan: Call to database::")) << message;
    }
  }
  if (fault.lasting || fault.PreventsOpening()) return;
  EXPECT_EQ(messages, ExpectedMessages(fault, copy));
}

// Only a session that needs the code counter and cannot read it ends early.
void CheckEnd(const Fault& fault, const Rehearsal& rehearsal, const Outcome& outcome) {
  EXPECT_TRUE(outcome.ended);
  EXPECT_EQ(outcome.signal, 0);
  if (outcome.exit_status == 1 && fault.IsOf("fetch")) {
    EXPECT_TRUE(fault.lasting || fault.HidesTheCounter());
    return;
  }
  EXPECT_EQ(outcome.exit_status, 0);
  EXPECT_EQ(StepsOf(outcome.transcript), StepsOf(rehearsal.transcript));
  EXPECT_NE(outcome.transcript.find("\nfiles left open: 0\n"), std::string::npos);
}

// Runs a session with one fault and checks what it did.
//   Returns  whether it came to its end.
bool Try(const Fault& fault, const Rehearsal& rehearsal) {
  const kestan_tests::TempDir folder;
  const SessionFiles files{folder / "index", folder / "copy"};
  const Outcome outcome = RunInChild([&](Transcript* transcript) {
    GdbmWatch watch;
    if (fault.lasting) {
      watch.FailFrom(fault.call.gdbm.function, fault.call.nth, fault.error);
    } else {
      watch.Fail(fault.call.gdbm.function, fault.call.nth, fault.error);
    }
    RunSession(files, transcript);
    transcript->Add("files left open", static_cast<long>(kestan_tests::CountOpenFiles()));
  });
  CheckStep(fault, rehearsal, outcome);
  CheckMessages(fault, outcome, files.copy);
  CheckEnd(fault, rehearsal, outcome);
  if (std::filesystem::exists(files.index)) kestan_tests::Dump(files.index);
  if (testing::Test::HasFailure()) ADD_FAILURE() << fault << "\n" << Describe(outcome);
  return outcome.exit_status == 0;
}

class GdbmFaultSessionTest : public testing::TestWithParam<std::tuple<std::string, bool>> {};

TEST_P(GdbmFaultSessionTest, KeepsItsPromises) {
  const auto& [function, lasting] = GetParam();
  const char* const wanted = std::getenv("KESTAN_FAULT_ERRORS");
  std::vector<int> errors = ErrorsOf(function);
  if (wanted == nullptr || std::string_view(wanted) != "all") errors.resize(1);

  const Rehearsal rehearsal = Rehearse();
  long sessions = 0;
  long whole = 0;
  int calls = 0;
  for (const Call& call : rehearsal.calls) {
    if (call.gdbm.function != function) continue;
    calls = call.nth;
    for (int error : errors) {
      whole += Try({call, error, lasting}, rehearsal) ? 1 : 0;
      ++sessions;
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(calls, 0);
  std::cout << function << ": " << calls << " calls, " << errors.size() << " errors, " << sessions
            << " sessions, " << whole << " of them came to their end\n";
}

std::string NameOf(const testing::TestParamInfo<GdbmFaultSessionTest::ParamType>& test) {
  return std::get<0>(test.param) + (std::get<1>(test.param) ? "FromThenOn" : "Once");
}

INSTANTIATE_TEST_SUITE_P(, GdbmFaultSessionTest,
                         testing::Combine(testing::ValuesIn(FaultyFunctions()), testing::Bool()),
                         NameOf);

}  // namespace
}  // namespace kestan_faults
