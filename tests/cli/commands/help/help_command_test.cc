// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using HelpCommandTest = CommandTest;

TEST_F(HelpCommandTest, PrintsWhatTheOptionPrints) {
  EXPECT_EQ(Run({"help"}), Run({"--help"}));
  EXPECT_EQ(Run({"help", "search"}), Run({"search", "--help"}));
  EXPECT_EQ(Run({"help", "title"}), Run({"title", "--help"}));
  EXPECT_EQ(Run({"help", "title", "set"}), Run({"title", "set", "--help"}));
  EXPECT_EQ(Run({"help", "shrink"}), Run({"compact", "--help"}));
  EXPECT_EQ(Run({"help", "help"}).out.substr(0, 6), "Print ");
}

TEST_F(HelpCommandTest, UnknownCommandIsAnErrorWithASuggestion) {
  EXPECT_EQ(Run({"help", "serch"}),
            Failure("no command 'serch'; did you mean 'search'? (see kestan --help)"));
  EXPECT_EQ(Run({"help", "title", "gte"}),
            Failure("no command 'gte'; did you mean 'get'? (see kestan title --help)"));
}

}  // namespace
}  // namespace kestan_tests
