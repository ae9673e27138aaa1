#include "cli/manual.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "tests/cli/command_test.h"

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

TEST(ManualTest, LettersThatRoffTakesForItsOwnAreSpelledOut) {
  const std::vector<Command> commands{
      {"try", "Try.", {}, {}, "\n.dot at \\ the start", {"kestan try"}, nullptr}};
  const std::string page = kestan_cli::ManualPages(commands).at("kestan-try.1");
  EXPECT_TRUE(Holds(page, "\n\\&.dot at \\e the start")) << page;
}

class CompletionTest : public CommandTest {
 protected:
  // Has bash complete `line` and returns what it offers.
  std::string Offers(const std::string& words, int count) {
    Write("completion", Run({"completion", "bash"}).out);
    Write("try", ". ./completion; COMP_WORDS=(" + words + "); COMP_CWORD=" +
                     std::to_string(count - 1) + "; _kestan; echo \"${COMPREPLY[@]}\" > offers");
    const std::string command = "cd '" + Path("") + "' && bash try";
    EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
    return BytesOfFile(Path("offers"));
  }
};

TEST_F(CompletionTest, BashOffersCommands) {
  EXPECT_EQ(Offers("kestan se", 2), "search\n");
  EXPECT_TRUE(Holds(Offers("kestan ''", 2), "index search"));
}

TEST_F(CompletionTest, BashOffersCommandsOfAGroup) {
  EXPECT_EQ(Offers("kestan title ''", 3), "get set delete\n");
}

TEST_F(CompletionTest, BashOffersOptionsOnlyWhereOneBegins) {
  EXPECT_EQ(Offers("kestan shrink --dr", 3), "--dry-run\n");
  EXPECT_EQ(Offers("kestan option set my.index --in", 5), "--in-place\n");
  EXPECT_EQ(Offers("kestan shrink ''", 3), "\n");
}

TEST_F(CompletionTest, UnknownShellIsTold) {
  EXPECT_EQ(Run({"completion", "csh"}),
            Failure("no completion for the shell 'csh'; there are bash, zsh and fish"));
}

}  // namespace
}  // namespace kestan_tests
