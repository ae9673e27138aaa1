// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/command_groups.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

Command Named(const std::string& name, bool hidden = false) {
  Command command{name, "Purpose of " + name + ".", {}, {}, "", {}, nullptr};
  command.hidden = hidden;
  command.group_purpose = "Purpose of the group of " + name + ".";
  return command;
}

TEST(CommandGroupsTest, CommandsWithOneFirstWordAreAGroup) {
  const std::vector<Command> commands{Named("list"), Named("title get"), Named("title set")};
  const std::vector<CommandGroup> groups = GroupsOf(commands);
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_FALSE(HasSecondWords(groups[0]));
  EXPECT_EQ(PurposeOf(groups[0]), "Purpose of list.");
  EXPECT_EQ(groups[1].name, "title");
  EXPECT_TRUE(HasSecondWords(groups[1]));
  EXPECT_EQ(SecondWords(groups[1]), "get set");
  EXPECT_EQ(PurposeOf(groups[1]), "Purpose of the group of title get.");
}

TEST(CommandGroupsTest, AliasesAreFirstWordsToo) {
  std::vector<Command> commands{Named("list"), Named("title get"), Named("title set")};
  commands[0].aliases = {"ls", "names"};
  const std::vector<CommandGroup> groups = GroupsOf(commands);
  EXPECT_EQ(FirstWords(groups[0]), (Arguments{"list", "ls", "names"}));
  EXPECT_EQ(FirstWords(groups[1]), Arguments{"title"});
}

TEST(CommandGroupsTest, HiddenCommandsAreInNoGroup) {
  const std::vector<Command> commands{Named("list"), Named("manual", true)};
  EXPECT_EQ(GroupsOf(commands).size(), 1u);
}

}  // namespace
}  // namespace kestan_cli
