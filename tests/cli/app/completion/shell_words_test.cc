// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/completion/shell_words.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestan_cli {
namespace {

TEST(ShellWordsTest, QuotesInsideQuotesAreEscaped) {
  EXPECT_EQ(ShellQuoted("it's"), "'it'\\''s'");
  EXPECT_EQ(ShellQuoted("$HOME `x` \\"), "'$HOME `x` \\'");
}

TEST(ShellWordsTest, FunctionsHaveACaseForEachCommandAndEachChoice) {
  const std::vector<Command> commands{
      {"find", "", {}, {{"-o,--order", "ORDER", "", {"best", "name"}}}, "", {}, nullptr},
      {"title get", "", {}, {{"--json", "", ""}}, "", {}, nullptr}};
  EXPECT_EQ(WordFunctions(GroupsOf(commands)),
            "_kestan_words() {\n"
            "  case \"$1 $2\" in\n"
            "    find\\ *) echo \"--help -o --order\" ;;\n"
            "    \"title get\") echo \"--help --json\" ;;\n"
            "    title\\ *) echo \"get\" ;;\n"
            "  esac\n"
            "}\n"
            "_kestan_values() {\n"
            "  case \"$1 $2\" in\n"
            "    find\\ --order) echo \"best name\" ;;\n"
            "  esac\n"
            "}\n"
            "_kestan_starts() {\n"
            "  case \"$1 $2\" in\n"
            "  esac\n"
            "}\n");
}

TEST(ShellWordsTest, AliasesShareTheCasesOfTheCommand) {
  std::vector<Command> commands{
      {"find", "", {}, {{"-o,--order", "ORDER", "", {"best"}}}, "", {}, nullptr}};
  commands[0].aliases = {"seek"};
  EXPECT_EQ(WordFunctions(GroupsOf(commands)),
            "_kestan_words() {\n"
            "  case \"$1 $2\" in\n"
            "    find\\ *|seek\\ *) echo \"--help -o --order\" ;;\n"
            "  esac\n"
            "}\n"
            "_kestan_values() {\n"
            "  case \"$1 $2\" in\n"
            "    find\\ --order|seek\\ --order) echo \"best\" ;;\n"
            "  esac\n"
            "}\n"
            "_kestan_starts() {\n"
            "  case \"$1 $2\" in\n"
            "  esac\n"
            "}\n");
}

TEST(ShellWordsTest, StartsOfArgumentsHaveACaseForEachCommandThatKnowsSome) {
  std::vector<Command> commands{{"find", "", {}, {}, "", {}, nullptr},
                                {"list", "", {}, {}, "", {}, nullptr}};
  commands[0].starts = {"a:", "b:"};
  commands[0].aliases = {"seek"};
  const std::string functions = WordFunctions(GroupsOf(commands));
  EXPECT_EQ(functions.substr(functions.find("_kestan_starts")),
            "_kestan_starts() {\n"
            "  case \"$1 $2\" in\n"
            "    find\\ *|seek\\ *) echo \"a: b:\" ;;\n"
            "  esac\n"
            "}\n");
}

}  // namespace
}  // namespace kestan_cli
