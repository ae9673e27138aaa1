#include "cli/app/manual.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/commands/commands.h"
#include "tests/cli/app/completion/completion_test.h"

namespace kestan_tests {
namespace {

using kestan_cli::AllCommands;
using kestan_cli::Command;

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(ManualTest, EveryCommandHasAnExampleAndItsOptionsArePrinted) {
  const auto pages = kestan_cli::ManualPages(AllCommands());
  for (const Command& command : AllCommands()) {
    if (command.hidden) continue;
    const std::string first = command.name.substr(0, command.name.find(' '));
    const std::string page = pages.at("kestan-" + first + ".1");
    EXPECT_FALSE(command.examples.empty()) << command.name;
    for (const kestan_cli::Option& option : command.options) {
      std::string name = LongName(option);
      for (std::size_t at = 0; (at = name.find('-', at)) != std::string::npos; at += 2) {
        name.insert(at, "\\");
      }
      EXPECT_TRUE(Holds(page, name)) << command.name << " " << name;
    }
    EXPECT_TRUE(Holds(pages.at("kestan.1"), first)) << command.name;
  }
}

TEST(ManualTest, CharactersOfRoffAreEscaped) {
  const std::vector<Command> commands{
      {"try", "Try.", {}, {}, "\n.dot at \\ the start", {"kestan try"}, nullptr}};
  const std::string page = kestan_cli::ManualPages(commands).at("kestan-try.1");
  EXPECT_TRUE(Holds(page, "\n\\&.dot at \\e the start")) << page;
}

TEST(ManualTest, PageIsFoundUnderEachNameOfTheCommand) {
  std::vector<Command> commands{{"try", "Try.", {}, {}, "", {"kestan try"}, nullptr}};
  commands[0].aliases = {"attempt"};
  const auto pages = kestan_cli::ManualPages(commands);
  EXPECT_EQ(pages.size(), 3u);
  EXPECT_TRUE(Holds(pages.at("kestan-try.1"),
                    ".TH kestan\\-try 1\n.SH NAME\nkestan\\-try, kestan\\-attempt \\- Try.\n"))
      << pages.at("kestan-try.1");
  EXPECT_EQ(pages.at("kestan-attempt.1"), pages.at("kestan-try.1"));
}

TEST(ManualTest, PageOfAGroupHasEachSectionOnce) {
  const std::string page = kestan_cli::ManualPages(AllCommands()).at("kestan-title.1");
  const std::string synopsis = "\n.SH SYNOPSIS\nkestan title get";
  EXPECT_TRUE(Holds(page, synopsis)) << page;
  EXPECT_EQ(page.find("\n.SH SYNOPSIS\n"), page.rfind("\n.SH SYNOPSIS\n"));
  EXPECT_TRUE(Holds(page, "\n.SH kestan title delete\n")) << page;
}

using ManualPagesTest = CompletionTest;

TEST_F(ManualPagesTest, GroffSetsThePagesWithoutWarnings) {
  if (!IsInstalled("groff")) GTEST_SKIP() << "there is no groff";
  for (const auto& [name, text] : kestan_cli::ManualPages(AllCommands())) Write(name, text);
  EXPECT_EQ(Shell("groff -man -ww -z *.1 2>&1"), "");
}

}  // namespace
}  // namespace kestan_tests
