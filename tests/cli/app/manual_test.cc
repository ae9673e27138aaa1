#include "cli/app/manual.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "cli/app/commands.h"
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

// Whether the machine has the program `name`.
bool IsInstalled(const std::string& name) {
  const std::string command = "command -v " + name + " > /dev/null";
  return std::system(command.c_str()) == 0;  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
}

TEST(ManualTest, PageOfAGroupHasEachSectionOnce) {
  const std::string page = kestan_cli::ManualPages(AllCommands()).at("kestan-title.1");
  const std::string synopsis = "\n.SH SYNOPSIS\nkestan title get";
  EXPECT_TRUE(Holds(page, synopsis)) << page;
  EXPECT_EQ(page.find("\n.SH SYNOPSIS\n"), page.rfind("\n.SH SYNOPSIS\n"));
  EXPECT_TRUE(Holds(page, "\n.SH kestan title delete\n")) << page;
}

class CompletionTest : public CommandTest {
 protected:
  // Has bash complete `line` and returns what it offers.
  std::string Offers(const std::string& words, int count) {
    Write("completion", Run({"completion", "bash"}).out);
    Write("try", ". ./completion; COMP_WORDS=(" + words + "); COMP_CWORD=" +
                     std::to_string(count - 1) + "; _kestan; echo \"${COMPREPLY[@]}\"");
    return Shell("bash try");
  }

  // Runs `command` in the folder of the test and returns what it prints.
  std::string Shell(const std::string& command) {
    const std::string line = "cd '" + Path("") + "' && { " + command + "; } > printed";
    EXPECT_EQ(std::system(line.c_str()), 0);  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
    return BytesOfFile(Path("printed"));
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

TEST_F(CompletionTest, PagesAreSetWithoutWarnings) {
  if (!IsInstalled("groff")) GTEST_SKIP() << "there is no groff";
  for (const auto& [name, text] : kestan_cli::ManualPages(AllCommands())) Write(name, text);
  EXPECT_EQ(Shell("groff -man -ww -z *.1 2>&1"), "");
}

TEST_F(CompletionTest, BashOffersTheValuesOfAnOption) {
  EXPECT_EQ(Offers("kestan search --order ''", 4), "best score name code\n");
  EXPECT_EQ(Offers("kestan search --color a", 4), "auto always\n");
}

TEST_F(CompletionTest, FishOffersWhatMayStandNext) {
  if (!IsInstalled("fish")) GTEST_SKIP() << "there is no fish";
  Write("completion", Run({"completion", "fish"}).out);
  Write("try",
        "source completion; for line in 'kestan se' 'kestan title ' 'kestan title get --j'"
        " 'kestan search --order b'\ncomplete -C $line | string split -f 1 \\t\nend");
  EXPECT_EQ(Shell("HOME=. fish --no-config try 2>&1"), "search\ndelete\nget\nset\n--json\nbest\n");
}

TEST_F(CompletionTest, ZshReadsItsCompletion) {
  if (!IsInstalled("zsh")) GTEST_SKIP() << "there is no zsh";
  Write("completion", Run({"completion", "zsh"}).out);
  Write("try",
        "compdef() { echo $*; }; . ./completion\n_kestan_words title ''\n"
        "_kestan_values search --order");
  EXPECT_EQ(Shell("zsh -f try 2>&1"), "_kestan kestan\nget set delete\nbest score name code\n");
}

TEST_F(CompletionTest, UnknownShellIsTold) {
  EXPECT_EQ(Run({"completion", "csh"}),
            Failure("no completion for the shell 'csh'; there are bash, zsh and fish"));
}

}  // namespace
}  // namespace kestan_tests
