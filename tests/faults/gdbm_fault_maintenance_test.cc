// SPDX-License-Identifier: GPL-3.0-or-later
// Each gdbm call of a session that looks after index files fails: once, and from there on. What is
// reported as done is done whole, whatever failed.
#include <gdbm.h>
#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "tests/faults/child.h"
#include "tests/faults/gdbm_fault_errors.h"
#include "tests/faults/gdbm_fault_messages.h"
#include "tests/faults/maintenance_session.h"
#include "tests/support/environment.h"
#include "tests/support/gdbm_calls.h"

namespace kestan_faults {
namespace {

using kestan_tests::GdbmCall;
using kestan_tests::GdbmWatch;

int CountCalls(const MaintenanceFiles& files, std::string_view function) {
  int calls = 0;
  Transcript transcript;
  GdbmWatch watch;
  watch.Observe([&](const GdbmCall& call) { calls += call.function == function ? 1 : 0; });
  files.Run(&transcript);
  files.Clean();
  return calls;
}

Outcome RunWithFault(const MaintenanceFiles& files, const std::string& function, int nth,
                     bool lasting) {
  const int error = ErrorsOf(function).front();
  return RunInChild([&](Transcript* transcript) {
    GdbmWatch watch;
    if (lasting) {
      watch.FailFrom(function, nth, error);
    } else {
      watch.Fail(function, nth, error);
    }
    files.Run(transcript);
    transcript->Add("files left open", static_cast<long>(kestan_tests::CountOpenFiles()));
  });
}

class GdbmFaultMaintenanceTest : public testing::TestWithParam<std::tuple<std::string, bool>> {};

TEST_P(GdbmFaultMaintenanceTest, CallsNothingDoneThatIsNot) {
  const auto& [function, lasting] = GetParam();
  const MaintenanceFiles files;
  const int calls = CountCalls(files, function);
  EXPECT_GT(calls, 0);
  const int stride = kestan_tests::NumberFromEnvironment("KESTAN_FAULTS_STRIDE", 1);
  for (int nth = 1; nth <= calls; nth += stride) {
    const Outcome outcome = RunWithFault(files, function, nth, lasting);
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.exit_status, 0);
    files.Check(outcome.transcript);
    EXPECT_NE(outcome.transcript.find("\nfiles left open: 0\n"), std::string::npos);
    for (const std::string& message : Messages(outcome.standard_error)) {
      EXPECT_TRUE(IsPromised(message)) << message;
    }
    if (HasFailure()) FAIL() << function << " number " << nth << "\n" << Describe(outcome);
    files.Clean();
  }
  std::cout << function << ": " << calls << " calls\n";
}

std::string NameOf(const testing::TestParamInfo<GdbmFaultMaintenanceTest::ParamType>& test) {
  return std::get<0>(test.param) + (std::get<1>(test.param) ? "FromThenOn" : "Once");
}

INSTANTIATE_TEST_SUITE_P(, GdbmFaultMaintenanceTest,
                         testing::Combine(testing::Values("close", "fetch", "firstkey", "nextkey",
                                                          "open", "setopt", "store", "sync"),
                                          testing::Bool()),
                         NameOf);

}  // namespace
}  // namespace kestan_faults
