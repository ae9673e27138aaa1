// SPDX-License-Identifier: GPL-3.0-or-later
// The session itself, undisturbed.
#include "tests/faults/session.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "tests/faults/child.h"
#include "tests/support/index_test.h"

namespace {

using kestan_faults::Outcome;
using kestan_faults::RunInChild;
using kestan_faults::Transcript;

TEST(SessionTest, CallsEveryMethodAndEndsWell) {
  const kestan_tests::TempDir folder;
  const kestan_faults::SessionFiles files{folder / "index", folder / "copy"};
  const Outcome outcome =
      RunInChild([&](Transcript* transcript) { RunSession(files, transcript); });
  EXPECT_TRUE(outcome.ended);
  EXPECT_EQ(outcome.exit_status, 0);
  EXPECT_EQ(outcome.standard_error, "");
  EXPECT_NE(outcome.transcript.find("close again: 0\n"), std::string::npos) << outcome.transcript;
}

TEST(ChildTest, ReportsHowItEnded) {
  EXPECT_EQ(RunInChild([](Transcript*) { std::_Exit(7); }).exit_status, 7);
  EXPECT_EQ(RunInChild([](Transcript*) { raise(SIGKILL); }).signal, SIGKILL);
  EXPECT_EQ(RunInChild([](Transcript*) { pause(); }, 1000).signal, SIGKILL);
}

TEST(ChildTest, KeepsWhatAKilledOneWrote) {
  const Outcome outcome = RunInChild([](Transcript* transcript) {
    transcript->Add("step", 1);
    std::fputs("line\n", stderr);
    raise(SIGKILL);
  });
  EXPECT_EQ(outcome.transcript, "step: 1\n");
  EXPECT_EQ(outcome.standard_error, "line\n");
}

}  // namespace
