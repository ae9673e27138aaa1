#include <gtest/gtest.h>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class DumpCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat dog\n");
    Add("b", "cat\n");
  }
};

TEST_F(DumpCommandTest, LoadedDumpHasEveryRecord) {
  const Outcome dump = Run({"dump", "my.index"});
  ASSERT_EQ(dump.status, 0) << dump;
  EXPECT_EQ(dump.out.substr(0, 13), "kestan-dump 1");
  Write("my.dump", dump.out);
  EXPECT_EQ(Run({"load", "new.index", "my.dump"}), Success(""));
  EXPECT_EQ(Dump(Path("new.index")), Dump(Path("my.index")));
}

}  // namespace
}  // namespace kestan_tests
