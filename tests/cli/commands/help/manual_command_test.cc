// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "cli/app/manual.h"
#include "cli/commands/commands.h"
#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using ManualCommandTest = CommandTest;

const std::string kQueries = KESTAN_SOURCE_DIR "/docs/queries.md";

void SetDate(const char* seconds) { setenv("SOURCE_DATE_EPOCH", seconds, 1); }

TEST_F(ManualCommandTest, WritesEveryPage) {
  Write("man/x", "");
  EXPECT_EQ(Run({"manual", "man", kQueries}, [] { SetDate("1582241400"); }), Success(""));
  const std::string version = Run({"--version"}).out;
  const kestan_cli::ManualEdition edition{version.substr(7, version.size() - 8), "2020-02-20"};
  for (const auto& [name, text] : kestan_cli::ManualPages(kestan_cli::AllCommands(), edition)) {
    EXPECT_EQ(BytesOfFile(Path("man/" + name)), text);
  }
  EXPECT_EQ(BytesOfFile(Path("man/kestan-query.7")),
            kestan_cli::QueryPage(ReadFile(kQueries), edition));
}

TEST_F(ManualCommandTest, DateIsThatOfTheVersionUnlessOneIsGiven) {
  Write("man/x", "");
  ASSERT_EQ(Run({"manual", "man"}, [] { unsetenv("SOURCE_DATE_EPOCH"); }), Success(""));
  EXPECT_EQ(BytesOfFile(Path("man/kestan.1")).rfind(".TH kestan 1 20", 0), 0u);
  EXPECT_EQ(Run({"manual", "man"}, [] { SetDate("today"); }),
            Failure("SOURCE_DATE_EPOCH takes a number from 0 to 4294967295, not 'today'"));
}

TEST_F(ManualCommandTest, QueriesThatCannotBeReadAreAnError) {
  Write("man/x", "");
  EXPECT_EQ(Run({"manual", "man", "none.md"}), Failure("cannot read 'none.md'"));
}

TEST_F(ManualCommandTest, PageThatCannotBeWrittenIsAnError) {
  EXPECT_EQ(Run({"manual", "none"}), Failure("cannot write 'none/kestan-check.1'"));
}

}  // namespace
}  // namespace kestan_tests
