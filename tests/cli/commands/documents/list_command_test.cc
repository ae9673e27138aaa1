#include <gtest/gtest.h>

#include <string>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

using ListCommandTest = CommandTest;

TEST_F(ListCommandTest, NamesAreInOrderOfBytes) {
  for (const char* name : {"b", "a/z", "B", "a.txt"}) Add(name, "cat\n");
  EXPECT_EQ(Run({"list", "my.index"}), Success("B\na.txt\na/z\nb\n"));
}

TEST_F(ListCommandTest, IndexWithoutDocumentsHasAnEmptyList) {
  { Kestan().OpenIndex(Path("my.index").c_str(), 1); }
  EXPECT_EQ(Run({"list", "my.index"}), Success(""));
}

TEST_F(ListCommandTest, RemovedDocumentsAreLeftOut) {
  Add("a", "cat\n");
  Add("b", "cat\n");
  ASSERT_EQ(Run({"remove", "my.index", "a"}).status, 0);
  EXPECT_EQ(Run({"list", "my.index"}), Success("b\n"));
}

TEST_F(ListCommandTest, NullEndsNamesWithNuls) {
  Add("a", "cat\n");
  Add("b", "cat\n");
  EXPECT_EQ(Run({"list", "-0", "my.index"}), Success(std::string("a\0b\0", 4)));
}

TEST_F(ListCommandTest, JsonHasTitles) {
  Add("a", "A title\nand more\n");
  const std::string out = Run({"list", "--json", "my.index"}).out;
  EXPECT_EQ(out.substr(0, 45), "{\"schema\":1,\"documents\":[{\"name\":\"a\",\"time\":1");
  EXPECT_NE(out.find("\"title\":\"A title\",\"summary\":\"and more\""), std::string::npos) << out;
}

TEST_F(ListCommandTest, NamesThatAreNotUtf8StayValidJson) {
  Add("caf\xe9", "cat\n");
  EXPECT_NE(Run({"list", "--json", "my.index"}).out.find("caf\xef\xbf\xbd"), std::string::npos);
}

// Other hosts may name a document so.
TEST_F(ListCommandTest, NameWithALineFeedIsOneName) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    engine.AddDocumentWords("a\nb", "cat");
  }
  const std::string out = Run({"list", "--json", "my.index"}).out;
  EXPECT_NE(out.find("\"documents\":[{\"name\":\"a\\nb\",\"time\":1"), std::string::npos) << out;
}

}  // namespace
}  // namespace kestan_tests
