// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/app/completion/completion_test.h"

namespace kestan_tests {
namespace {

using ZshCompletionTest = CompletionTest;

TEST_F(ZshCompletionTest, ZshRunsItsFunctions) {
  if (!IsInstalled("zsh")) GTEST_SKIP() << "there is no zsh";
  WriteCompletion("zsh");
  Write("try",
        "compdef() { echo $*; }; . ./completion\n_kestan_words title ''\n"
        "_kestan_values search --order\n_kestan_starts search ''");
  EXPECT_EQ(Shell("zsh -f try 2>&1"),
            "_kestan kestan\nget set delete\nbest name\n"
            "path: type: after: before: title: from:\n");
}

}  // namespace
}  // namespace kestan_tests
