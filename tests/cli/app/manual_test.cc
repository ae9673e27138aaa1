// SPDX-License-Identifier: GPL-3.0-or-later
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

const kestan_cli::ManualEdition kEdition{"1.2.3", "2020-02-20"};

std::string QueriesInMarkdown() { return ReadFile(KESTAN_SOURCE_DIR "/docs/queries.md"); }

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(ManualTest, EveryCommandHasAnExampleAndItsOptionsArePrinted) {
  const auto pages = kestan_cli::ManualPages(AllCommands(), kEdition);
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
  const std::string page = kestan_cli::ManualPages(commands, kEdition).at("kestan-try.1");
  EXPECT_TRUE(Holds(page, "\n\\&.dot at \\e the start")) << page;
}

TEST(ManualTest, PageIsFoundUnderEachNameOfTheCommand) {
  std::vector<Command> commands{{"try", "Try.", {}, {}, "", {"kestan try"}, nullptr}};
  commands[0].aliases = {"attempt"};
  const auto pages = kestan_cli::ManualPages(commands, kEdition);
  EXPECT_EQ(pages.size(), 3u);
  EXPECT_TRUE(Holds(pages.at("kestan-try.1"),
                    ".TH kestan\\-try 1 2020\\-02\\-20 \"kestan 1.2.3\" \"Kestan manual\"\n.SH "
                    "NAME\nkestan\\-try, kestan\\-attempt \\- Try.\n"))
      << pages.at("kestan-try.1");
  EXPECT_EQ(pages.at("kestan-attempt.1"), pages.at("kestan-try.1"));
}

TEST(ManualTest, PageOfAGroupHasEachSectionOnce) {
  const std::string page = kestan_cli::ManualPages(AllCommands(), kEdition).at("kestan-title.1");
  const std::string synopsis = "\n.SH SYNOPSIS\nkestan title get";
  EXPECT_TRUE(Holds(page, synopsis)) << page;
  EXPECT_EQ(page.find("\n.SH SYNOPSIS\n"), page.rfind("\n.SH SYNOPSIS\n"));
  EXPECT_TRUE(Holds(page, "\n.SH kestan title delete\n")) << page;
}

TEST(ManualTest, PagesReferToEachOtherAndNotToThemselves) {
  const auto pages = kestan_cli::ManualPages(AllCommands(), kEdition);
  EXPECT_TRUE(Holds(pages.at("kestan-search.1"),
                    "\n.SH SEE ALSO\n.BR kestan (1) ,\n.BR kestan\\-index (1) ,\n"
                    ".BR kestan\\-query (7)\n"))
      << pages.at("kestan-search.1");
  const std::string overview = pages.at("kestan.1");
  const std::string references = overview.substr(overview.find(".SH SEE ALSO"));
  for (const auto& page : pages) {
    const std::string name = page.first.substr(0, page.first.size() - 2);
    if (name == "kestan" || name == "kestan-shrink") continue;  // that one is kestan-compact too
    EXPECT_TRUE(Holds(references, ".BR kestan\\-" + name.substr(7) + " (1)")) << name;
  }
}

TEST(ManualTest, PageOnQueriesHasEveryHeadingAndRowOfTheDocs) {
  const std::string page = kestan_cli::QueryPage(QueriesInMarkdown(), kEdition);
  EXPECT_EQ(page.rfind(".TH kestan\\-query 7 2020\\-02\\-20 ", 0), 0u) << page;
  for (const char* part : {".SH OPERATORS\n", ".SH RELEVANCE\n", ".SH SEE ALSO\n",
                           "\n.TP\n\\fBcat NEAR/3 dog\\fR\nwith both, at most 3 positions apart",
                           "\n.TP\n\\fB\\-\\-limit N\\fR\n"}) {
    EXPECT_TRUE(Holds(page, part)) << part << page;
  }
}

using ManualPagesTest = CompletionTest;

TEST_F(ManualPagesTest, GroffSetsThePagesWithoutWarnings) {
  if (!IsInstalled("groff")) GTEST_SKIP() << "there is no groff";
  for (const auto& [name, text] : kestan_cli::ManualPages(AllCommands(), kEdition)) {
    Write(name, text);
  }
  Write("query.7", kestan_cli::QueryPage(QueriesInMarkdown(), kEdition));
  EXPECT_EQ(Shell("groff -man -ww -z -Tutf8 *.[17] 2>&1"), "");
}

}  // namespace
}  // namespace kestan_tests
