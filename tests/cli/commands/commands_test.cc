// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/commands.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "cli/app/command_groups.h"

namespace kestan_cli {
namespace {

TEST(CommandsTest, NamesAreUniqueAndCommandsOfAGroupAreNeighbours) {
  std::set<std::string> names;
  for (const Command& command : AllCommands()) {
    EXPECT_TRUE(names.insert(command.name).second) << command.name;
    EXPECT_TRUE(static_cast<bool>(command.run)) << command.name;
  }
  std::set<std::string> groups;
  for (const CommandGroup& group : GroupsOf(AllCommands())) {
    EXPECT_TRUE(groups.insert(group.name).second) << group.name;
    EXPECT_NE(PurposeOf(group), "") << group.name;
  }
}

TEST(CommandsTest, CommonOptionsHaveTheSameLettersInAllCommands) {
  const std::map<std::string, std::string> names{
      {"--json", "--json"}, {"--quiet", "-q,--quiet"}, {"--null", "-0,--null"}};
  for (const Command& command : AllCommands()) {
    for (const Option& option : command.options) {
      const auto known = names.find(LongName(option));
      if (known == names.end()) continue;
      EXPECT_EQ(option.names, known->second) << command.name;
    }
  }
}

}  // namespace
}  // namespace kestan_cli
