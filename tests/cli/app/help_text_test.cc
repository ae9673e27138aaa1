// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/help_text.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "cli/app/arguments.h"
#include "cli/commands/commands.h"
#include "cli/console/columns.h"

namespace kestan_cli {
namespace {

TEST(HelpTextTest, SentencesAreWrappedAtTheMargin) {
  EXPECT_EQ(WrappedHelp("one two three\n\nfour\n", 8), "one two\nthree\n\nfour\n");
}

TEST(HelpTextTest, PurposesGoOnBelowThemselves) {
  const std::string name = "  --all" + std::string(kHelpColumn - 7, ' ');
  EXPECT_EQ(WrappedHelp(name + "one two three four five six seven eight nine ten eleven\n", 84),
            name + "one two three four five six seven eight nine ten eleven\n");
  EXPECT_EQ(
      WrappedHelp(name + "one two three four five six seven eight nine ten\n", 60),
      name + "one two three four five six\n" + std::string(28, ' ') + "seven eight nine ten\n");
}

TEST(HelpTextTest, ExamplesStayOnOneLine) {
  EXPECT_EQ(WrappedHelp("Example: kestan search my.index cat\n", 20),
            "Example: kestan search my.index cat\n");
}

TEST(HelpTextTest, HelpOfEveryCommandFitsTheUsualTerminal) {
  for (const Command& command : AllCommands()) {
    std::istringstream words(command.name);
    Arguments arguments;
    for (std::string word; words >> word;) arguments.push_back(word);
    arguments.emplace_back("--help");
    std::istringstream help(WrappedHelp(ReadArguments(AllCommands(), arguments).text, 80));
    for (std::string line; std::getline(help, line);) EXPECT_LE(ColumnsOf(line), 80u) << line;
  }
}

}  // namespace
}  // namespace kestan_cli
