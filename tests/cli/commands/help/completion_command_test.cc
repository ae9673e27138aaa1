// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using CompletionCommandTest = CommandTest;

TEST_F(CompletionCommandTest, UnknownShellIsAnError) {
  EXPECT_EQ(Run({"completion", "csh"}),
            Failure("no completion for the shell 'csh'; there are bash, zsh and fish"));
}

}  // namespace
}  // namespace kestan_tests
