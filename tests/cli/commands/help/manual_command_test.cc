#include <gtest/gtest.h>

#include <string>

#include "cli/app/manual.h"
#include "cli/commands/commands.h"
#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using ManualCommandTest = CommandTest;

TEST_F(ManualCommandTest, WritesEveryPage) {
  Write("man/x", "");
  EXPECT_EQ(Run({"manual", "man"}), Success(""));
  for (const auto& [name, text] : kestan_cli::ManualPages(kestan_cli::AllCommands())) {
    EXPECT_EQ(BytesOfFile(Path("man/" + name)), text);
  }
}

TEST_F(ManualCommandTest, PageThatCannotBeWrittenIsAnError) {
  EXPECT_EQ(Run({"manual", "none"}), Failure("cannot write 'none/kestan-check.1'"));
}

}  // namespace
}  // namespace kestan_tests
