#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class RemoveCommandTest : public CommandTest {
 protected:
  void SetUp() override {
    Add("a", "cat\nsummary\n");
    Add("b", "cat\n");
  }
};

TEST_F(RemoveCommandTest, ReportsHowManyWereRemoved) {
  EXPECT_EQ(Run({"remove", "my.index", "a"}), Success("removed 1 document\n"));
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
}

TEST_F(RemoveCommandTest, ReportIsJsonOrLeftOut) {
  EXPECT_EQ(Run({"remove", "--json", "my.index", "a"}), Success("{\"schema\":1,\"removed\":1}\n"));
  EXPECT_EQ(Run({"remove", "-q", "my.index", "b"}), Success(""));
}

TEST_F(RemoveCommandTest, NameGivenTwiceCountsOnce) {
  EXPECT_EQ(Run({"remove", "my.index", "b", "a", "b"}), Success("removed 2 documents\n"));
  EXPECT_EQ(Dump(Path("my.index")).at("g-deleted"), Units({1, 2}));
}

TEST_F(RemoveCommandTest, SideRecordsAreRemovedToo) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.DBPutUser("a", "mine"), 0);
  }
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  const Records records = Dump(Path("my.index"));
  for (const char* key : {"d-a", "t-a", "s-a", "u-a"}) EXPECT_EQ(records.count(key), 0u) << key;
  for (const char* key : {"d-b", "t-b", "s-b"}) EXPECT_EQ(records.count(key), 1u) << key;
}

TEST_F(RemoveCommandTest, UnknownNameIsFoundBeforeAnythingIsRemoved) {
  const std::string before = IndexBytes();
  EXPECT_EQ(Run({"remove", "my.index", "a", "c"}),
            Failure("no document 'c' in index 'my.index'; see kestan list"));
  EXPECT_EQ(Run({"remove", "my.index", "a", "b\nc"}),
            Failure("no document 'b\\nc' in index 'my.index'; see kestan list"));
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(RemoveCommandTest, RemovedDocumentCannotBeRemovedAgain) {
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"remove", "my.index", "a"}),
            Failure("no document 'a' in index 'my.index'; see kestan list"));
}

}  // namespace
}  // namespace kestan_tests
