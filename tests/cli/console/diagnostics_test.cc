// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/diagnostics.h"

#include <gtest/gtest.h>

#include <string_view>

#include "tests/support/index_test.h"

namespace kestan_cli {
namespace {

using kestan_tests::StandardErrorOf;

TEST(DiagnosticsTest, ProblemIsOneLineUnderTheNameOfTheProgram) {
  EXPECT_EQ(StandardErrorOf([] { ReportProblem("no file 'a\nb'"); }), "kestan: no file 'a\\nb'\n");
}

TEST(DiagnosticsTest, DiagnosticIsOneLineWithoutTheName) {
  EXPECT_EQ(StandardErrorOf([] { PrintDiagnostic("note: \x1b[2J"); }), "note: \\x1b[2J\n");
}

TEST(DiagnosticsTest, LinesOfOthersKeepTheirLineFeedsOnly) {
  EXPECT_EQ(StandardErrorOf([] { PrintDiagnostics("one\ntwo\t\x9b caf\xc3\xa9\n"); }),
            "one\ntwo\\x09\\x9b caf\xc3\xa9\n");
  EXPECT_EQ(StandardErrorOf([] { PrintDiagnostics(std::string_view("\0\x7f", 2)); }), "\\x00\\x7f");
}

TEST(DiagnosticsTest, ProgressKeepsItsControls) {
  EXPECT_EQ(StandardErrorOf([] { PrintProgress("\r[#]\x1b[K"); }), "\r[#]\x1b[K");
}

}  // namespace
}  // namespace kestan_cli
