// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "tests/cli/commands/upkeep/upkeep_test.h"

namespace kestan_tests {
namespace {

class DumpCommandTest : public UpkeepTest {};

TEST_F(DumpCommandTest, LoadedDumpOfAFileHasEveryRecord) {
  const Outcome dump = Run({"dump", "one.index"});
  ASSERT_EQ(dump.status, 0) << dump;
  EXPECT_EQ(dump.out.substr(0, 13), "kestan-dump 1");
  Write("my.dump", dump.out);
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}), Success(""));
  EXPECT_EQ(Dump(Path("new.index")), Dump(Path("one.index")));
}

TEST_F(DumpCommandTest, LoadedDumpOfAFolderHasTheSameDump) {
  const Outcome dump = Run({"dump", "my.index"});
  ASSERT_EQ(dump.status, 0) << dump;
  EXPECT_EQ(dump.out.substr(0, 21), "kestan-folder-dump 1\n");
  Write("my.dump", dump.out);
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}), Success(""));
  EXPECT_EQ(Run({"dump", "new.index"}), dump);
  EXPECT_EQ(CountMatches("new.index", "cat"), 2u);
  EXPECT_EQ(Run({"check", "new.index"}), Success("0 faults, 0 notes\n"));
}

TEST_F(DumpCommandTest, OutputThatCannotBeWrittenIsAnError) {
  const auto full = [] { dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
  for (const char* index : {"one.index", "my.index"}) {
    const Outcome outcome = Run({"dump", index}, full);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err, "");
  }
}

TEST_F(DumpCommandTest, DamagedAndMissingIndexesAreErrors) {
  Damage("my.index/1.segment");
  EXPECT_EQ(Run({"dump", "my.index"}).err,
            "kestan: index 'my.index': its bytes have changed since it was written (1.segment); "
            "see kestan check and kestan repair\n");
  EXPECT_EQ(Run({"dump", "nowhere"}),
            Failure("cannot open index 'nowhere': no such file or folder; kestan index makes one"));
}

}  // namespace
}  // namespace kestan_tests
