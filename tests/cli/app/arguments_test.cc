// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

std::vector<Command> Commands() {
  using Count = Positional::Count;
  Command find{"find",
               "Find.",
               {{"INDEX", ""}, {"QUERY", "", Count::kOneOrMore}},
               {{"-l,--long", "", ""}, {"-n,--number", "N", ""}, {"--order", "O", "", {"a", "b"}}},
               "",
               {},
               nullptr};
  find.takes_dashes = true;
  find.aliases = {"seek", "hunt"};
  return {find, {"title get", "Get.", {{"INDEX", ""}}, {}, "", {}, nullptr}};
}

// Returns why `arguments` are refused.
std::string Refusal(const Arguments& arguments) {
  const std::vector<Command> commands = Commands();
  try {
    ReadArguments(commands, arguments);
  } catch (const CommandError& error) {
    return error.what();
  }
  return "";
}

TEST(ArgumentsTest, ValuesAreUnderTheirNames) {
  const std::vector<Command> commands = Commands();
  const Request request =
      ReadArguments(commands, {"find", "-l", "my.index", "a", "b", "--number=3"});
  ASSERT_EQ(request.command, &commands[0]);
  EXPECT_TRUE(request.values.Has("--long"));
  EXPECT_FALSE(request.values.Has("--order"));
  EXPECT_EQ(request.values.Text("INDEX"), "my.index");
  EXPECT_EQ(request.values.All("QUERY"), (Arguments{"a", "b"}));
  EXPECT_EQ(request.values.Text("--number"), "3");
}

TEST(ArgumentsTest, WordsWithOneDashAreArgumentsUnlessTheyAreSwitches) {
  const std::vector<Command> commands = Commands();
  const Request request = ReadArguments(commands, {"find", "i", "cat", "-dog", "-l"});
  EXPECT_EQ(request.values.All("QUERY"), (Arguments{"cat", "-dog"}));
  EXPECT_TRUE(request.values.Has("--long"));
}

TEST(ArgumentsTest, WordsInBracketsStayWhole) {
  const std::vector<Command> commands = Commands();
  const Request request = ReadArguments(commands, {"find", "[a,b]", "[c]"});
  EXPECT_EQ(request.values.Text("INDEX"), "[a,b]");
  EXPECT_EQ(request.values.Text("QUERY"), "[c]");
}

TEST(ArgumentsTest, AliasMeansTheSameAsTheName) {
  const std::vector<Command> commands = Commands();
  for (const char* name : {"find", "seek", "hunt"}) {
    const Request request = ReadArguments(commands, {name, "i", "cat", "-dog", "-l"});
    ASSERT_EQ(request.command, &commands[0]) << name;
    EXPECT_EQ(request.values.All("QUERY"), (Arguments{"cat", "-dog"})) << name;
    EXPECT_TRUE(request.values.Has("--long")) << name;
  }
}

TEST(ArgumentsTest, HelpListsAliasesAndRefusalsNameTheCommand) {
  const std::vector<Command> commands = Commands();
  const std::string help = ReadArguments(commands, {"--help"}).text;
  EXPECT_NE(help.find("find, seek, hunt"), std::string::npos) << help;
  EXPECT_EQ(Refusal({"hunt", "i", "a", "--long=1"}),
            "--long takes no value (see kestan find --help)");
}

TEST(ArgumentsTest, HelpIsTextWithoutACommand) {
  const std::vector<Command> commands = Commands();
  const Request request = ReadArguments(commands, {"find", "--help"});
  EXPECT_EQ(request.command, nullptr);
  EXPECT_NE(request.text.find("QUERY"), std::string::npos) << request.text;
}

TEST(ArgumentsTest, VersionIsTextWithoutACommand) {
  const std::vector<Command> commands = Commands();
  const Request request = ReadArguments(commands, {"--version"});
  EXPECT_EQ(request.command, nullptr);
  EXPECT_EQ(request.text.substr(0, 7), "kestan ");
  EXPECT_EQ(ReadArguments(commands, {"--version", "--help"}).command, nullptr);
}

// Only commands that are asked for are declared.
TEST(ArgumentsTest, HelpListsAllCommandsOfTheProgramOrOfTheGroup) {
  std::vector<Command> commands = Commands();
  commands.push_back({"title set", "Set.", {}, {}, "", {}, nullptr});
  const auto lists = [&commands](const Arguments& arguments, const char* purpose) {
    return ReadArguments(commands, arguments).text.find(purpose) != std::string::npos;
  };
  EXPECT_TRUE(lists({"--help"}, "Find."));
  EXPECT_TRUE(lists({"title", "--help"}, "Get."));
  EXPECT_TRUE(lists({"title", "--help"}, "Set."));
  EXPECT_EQ(ReadArguments(commands, {"title", "set"}).command, &commands[2]);
  EXPECT_EQ(Refusal({"title", "lose"}), "no command 'lose' (see kestan title --help)");
  EXPECT_EQ(Refusal({"find", "title"}), "QUERY is required (see kestan find --help)");
}

TEST(ArgumentsTest, RefusalsNameTheArgumentAndTheHelp) {
  EXPECT_EQ(Refusal({}), "no command (see kestan --help)");
  EXPECT_EQ(Refusal({"lose"}), "no command 'lose' (see kestan --help)");
  EXPECT_EQ(Refusal({"title"}), "no command (see kestan title --help)");
  EXPECT_EQ(Refusal({"title", "get", "i", "j"}),
            "one argument too many: 'j' (see kestan title get --help)");
  EXPECT_EQ(Refusal({"find", "i", "a", "--none"}),
            "no option '--none'; put -- before what only looks like one (see kestan find --help)");
  EXPECT_EQ(Refusal({"find", "i", "a", "--number"}),
            "--number needs a value (see kestan find --help)");
  EXPECT_EQ(Refusal({"find", "i", "a", "--long=1"}),
            "--long takes no value (see kestan find --help)");
  EXPECT_EQ(Refusal({"find", "i", "a", "--order", "c"}), "--order takes one of a, b, not 'c'");
}

}  // namespace
}  // namespace kestan_cli
